// The ring as text, to whoever wants it.

#include "diagnostics/dump/KDumpFile.h"
#include "diagnostics/dump/KLogText.h"
#include "diagnostics/KLogger.h"
#include "diagnostics/StructuredGuard.h"

#include <cstring>
#include <ostream>

#include <windows.h>

namespace
{

const wchar_t dumpPath[] = L"C:\\Temp\\DebugDump.log";

bool IsUnwritten(const KLogRecord& record)
{
    static const KLogRecord zero = {};
    return std::memcmp(&record, &zero, sizeof record) == 0;
}

class StringSink : public TextSink
{
public:
    explicit StringSink(std::string& target) : target(target) {}
    void Write(const char* text, std::size_t length) override { target.append(text, length); }

private:
    std::string& target;
};

class StreamSink : public TextSink
{
public:
    explicit StreamSink(std::ostream& target) : target(target) {}
    void Write(const char* text, std::size_t length) override
    {
        target.write(text, static_cast<std::streamsize>(length));
    }
    void Flush() override { target.flush(); }

private:
    std::ostream& target;
};

} // namespace

void KLogger::FormatRecord(std::string& result, std::uint32_t index, std::uint32_t referenceIndex)
{
    result.clear();
    if (index >= capacity) {
        result = "*OUT OF BOUNDS*";
        return;
    }
    const KLogRecord record = records[index];
    StringSink sink(result);
    if (!IsUnwritten(record))
        KLogText(*this, sink).WriteRecord(record, records[referenceIndex].time);
}

std::uint32_t KLogger::FindOldest() const
{
    const std::uint32_t next = (writeIndex.load(std::memory_order_relaxed) + 1) % capacity;
    return IsUnwritten(records[next]) ? 0 : next;
}

// The slot of the oldest record can be taken by a writer meanwhile, so its time is read once.
void KLogger::WriteText(TextSink& sink) const
{
    const std::uint32_t oldest = FindOldest();
    const std::int64_t reference = records[oldest].time;
    KLogText text(*this, sink);
    text.WriteHeader(reference);
    for (std::uint32_t i = 0; i < capacity; ++i) {
        const KLogRecord record = records[(oldest + i) % capacity];
        if (IsUnwritten(record))
            continue;
        text.WriteRecord(record, reference);
        sink.Write("\n", 1);
        sink.Flush();
    }
}

void KLogger::WriteDump(std::ostream& out)
{
    if (this == nullptr)
        return;
    try {
        StreamSink sink(out);
        WriteText(sink);
    } catch (...) {
        // A dump is taken when things are already wrong; it tells what it can.
    }
}

bool KLogger::WriteDumpFile()
{
    KDumpFile file(CreateFileW(dumpPath, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                               CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file.IsOpen() && WriteTo(file);
}

// Nothing in the guarded body raises, allocates or owns anything, so a fault just ends it: the
// file outside has what was written until then.
bool KLogger::WriteTo(KDumpFile& file) const
{
    struct Dump {
        const KLogger* core;
        KDumpFile* file;
    } dump = {this, &file};
    const GuardedBody write = [](void* context) {
        const Dump& guarded = *static_cast<const Dump*>(context);
        guarded.core->WriteText(*guarded.file);
    };
    const GuardFilter acceptAll = [](void*, _EXCEPTION_POINTERS*) -> long { return GuardAccept; };
    return RunGuarded(write, acceptAll, &dump);
}
