#pragma once

#include "diagnostics/KLogLock.h"
#include "diagnostics/KLogNames.h"
#include "diagnostics/KLogRecord.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <string>

#include <sys/timeb.h>
#include <windows.h>

class KDumpFile;
struct RecorderDescription;
class TextSink;

/// The log core: a ring of the latest 131,072 events and the names that make them readable.
///
/// Recording an event claims a slot with one atomic addition and stores plain numbers: no lock, no
/// allocation, no text, no failure. Text exists only while somebody takes a dump. There is one core
/// a module; it is made at load, takes 5 MiB, and is never freed.
///
/// Names can be given and never changed: the first name of a key wins for good. Text is narrow.
///
/// Threads: everything may be called from any thread at any time, dumps beside writers included; a
/// dump reads the ring as it stands and may show a line that mixes two events. Dumps and lookups
/// take no lock, allocate nothing and wait for nobody. `AddRecord`, the naming operations and
/// `WriteDump` accept a null `this` and then do nothing.
///
/// Failure: naming allocates, so std::bad_alloc can leave it; the lock of that one map then stays
/// held, and the next naming in the same map blocks.
///
/// Its memory is described by `RecorderDescription`, for those who read it out of a dump.
class KLogger
{
public:
    /// The core of this module, made at the first call.
    static KLogger* GetModuleLogger();

    /// Makes a core with an empty ring. Raises std::bad_alloc when there is no memory for it.
    KLogger();
    KLogger(const KLogger&) = delete;
    KLogger& operator=(const KLogger&) = delete;

    /// Records one event, overwriting the oldest when the ring is full. `kind` is a core event
    /// kind such as -7 for "Scope_push", not a flow event index.
    void AddRecord(std::int32_t kind, std::uint32_t param1, std::uint32_t param2,
                   std::uint32_t classId, std::uint32_t pointId, const void* object);

    /// Names a class, a function or an error: the three share one space of ids.
    void SetIdName(std::uint32_t id, const std::string& name);

    /// Names a message, in the space of the state names.
    void SetMessageName(std::uint32_t id, const std::string& name);

    /// Names a state of a class. States below 100 keep clear of those of the next class id.
    void SetClassStateName(std::uint32_t classId, std::uint32_t state, const std::string& name);

    /// Names an object by its address.
    void SetObjectName(const void* object, const std::string& name);

    /// Names the calling thread. A later thread to which the system gives the same id inherits it.
    void SetThreadName(const std::string& name);

    /// Gives all names known here to `other`, which keeps those it already has. Two cores must not
    /// copy to one another at the same moment.
    void CopyNamesTo(KLogger& other);

    /// @{
    /// The name of a number, null when it has none. Valid as long as the core.
    const KLogNames::Name* FindEventName(std::int32_t kind) const
    {
        return eventNames.Find(static_cast<std::uint32_t>(kind));
    }
    const KLogNames::Name* FindThreadName(std::uint32_t id) const { return threadNames.Find(id); }
    const KLogNames::Name* FindIdName(std::uint32_t id) const { return idNames.Find(id); }
    const KLogNames::Name* FindMessageName(std::uint32_t id) const { return stateNames.Find(id); }
    const KLogNames::Name* FindClassStateName(std::uint32_t classId, std::uint32_t state) const
    {
        return stateNames.Find(StateKey(classId, state));
    }
    const KLogNames::Name* FindObjectName(std::uint64_t address) const
    {
        return objectNames.Find(address);
    }
    /// @}

    /// Puts the text of one slot into `result`: two lines without a final line end. Empty for a
    /// slot never written, "*OUT OF BOUNDS*" for an `index` beyond the ring. Times count from the
    /// record in slot `referenceIndex`.
    void FormatRecord(std::string& result, std::uint32_t index, std::uint32_t referenceIndex);

    /// Writes header and records, oldest first, flushing after each. Lets no exception out: the
    /// dump then ends where it stands.
    void WriteDump(std::ostream& out);

    /// Writes a dump to "C:\Temp\DebugDump.log", replacing the last one. False when the file
    /// cannot be opened, and nothing makes its folder, or when a machine fault ended the dump.
    bool WriteDumpFile();

    /// Writes a dump to a file that is open. False when a machine fault ended it.
    bool WriteTo(KDumpFile& file) const;

private:
    friend class KLogText;

    static const std::uint32_t ringCapacity = 0x20000;
    static_assert((ringCapacity & (ringCapacity - 1)) == 0,
                  "slots follow one another where the numbers begin anew, too");

    // By plain stores, which another writer or a dump may meet half-way.
    static void Fill(KLogRecord& record, std::int32_t kind, std::uint32_t param1,
                     std::uint32_t param2, std::uint32_t classId, std::uint32_t pointId,
                     const void* object);
    static void Insert(KLogNames& names, KLogLock& lock, std::uint64_t key, const std::string& name)
        VAREK_LOCK_RULE(locks_excluded(lock));
    static void Copy(KLogNames& from, KLogLock& fromLock, KLogNames& to, KLogLock& toLock)
        VAREK_LOCK_RULE(locks_excluded(fromLock, toLock));
    static std::uint32_t StateKey(std::uint32_t classId, std::uint32_t state)
    {
        return classId * 100 + state;
    }

    std::uint32_t FindOldest() const;
    void WriteText(TextSink& sink) const;

    static RecorderDescription description; // of this module's core

    KLogRecord* records;
    std::int64_t counterFrequency;
    struct __timeb64 startWallClock;
    std::int64_t startCounter;
    std::uint32_t capacity;
    std::atomic<std::uint32_t> writeIndex; // running number of the last claimed slot
    bool enabled;                          // for debuggers to see; it gates nothing
    // Who adds to a map holds its lock; who looks up takes none. Where two are held, which only
    // copying does, the lock of the core that is copied from comes first.
    KLogNames eventNames; // constant after construction
    KLogNames threadNames;
    KLogNames idNames;
    KLogNames stateNames;
    KLogNames objectNames;
    KLogLock eventNamesLock;
    KLogLock threadNamesLock;
    KLogLock idNamesLock;
    KLogLock stateNamesLock;
    KLogLock objectNamesLock;
    KLogLock spareLock;
    char startDate[26]; // `startWallClock` as text with a line end; empty if it could not be told
};

// Inline, because a record costs little more than passing its values on would. The capacity is the
// constant rather than the field: it needs no division, and no look at a line that another writer
// has just taken away.
inline void KLogger::AddRecord(std::int32_t kind, std::uint32_t param1, std::uint32_t param2,
                               std::uint32_t classId, std::uint32_t pointId, const void* object)
{
    if (this == nullptr || !records)
        return;

    const std::uint32_t number = writeIndex.fetch_add(1, std::memory_order_relaxed) + 1;
    Fill(records[number % ringCapacity], kind, param1, param2, classId, pointId, object);
}

inline void KLogger::Fill(KLogRecord& record, std::int32_t kind, std::uint32_t param1,
                          std::uint32_t param2, std::uint32_t classId, std::uint32_t pointId,
                          const void* object)
{
    LARGE_INTEGER ticks;
    QueryPerformanceCounter(&ticks);
    record.time = ticks.QuadPart;
    record.kind = kind;
    record.param1 = param1;
    record.param2 = param2;
    record.object = reinterpret_cast<std::uintptr_t>(object);
    record.classId = classId;
    record.pointId = pointId;
    record.threadId = GetCurrentThreadId();
}
