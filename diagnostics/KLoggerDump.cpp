// The text form of the ring.

#include "diagnostics/KLogger.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <locale>
#include <sstream>

namespace
{

const char dumpPath[] = "C:\\Temp\\DebugDump.log";

const std::int32_t rootError = -105;
const std::int32_t warning = -101;
const std::int32_t stateChange = -25;
const std::int32_t messageSend = -21;
const std::int32_t timingPoint = 0;

const char unknownId[] = "(unknown)"; // stands alone, so it brings its brackets
const char unknown[] = "unknown";     // stands inside brackets

std::int32_t Signed(std::uint32_t value)
{
    return static_cast<std::int32_t>(value);
}

bool IsUnwritten(const KLogRecord& record)
{
    static const KLogRecord zero = {};
    return std::memcmp(&record, &zero, sizeof record) == 0;
}

void ComposePointer(std::ostream& text, std::uint64_t address)
{
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llX", static_cast<unsigned long long>(address));
    text << digits;
}

} // namespace

template <class Map>
bool KLogger::Find(const Map& names, KLogLock& lock, typename Map::key_type key, std::string& name)
{
    lock.Enter();
    const typename Map::const_iterator entry = names.find(key);
    const bool found = entry != names.end();
    if (found)
        name = entry->second;
    lock.Leave();
    return found;
}

template <class Map>
std::string KLogger::NameOr(const std::string& absent, const Map& names, KLogLock& lock,
                            typename Map::key_type key)
{
    std::string name;
    return Find(names, lock, key, name) ? name : absent;
}

// Whole seconds are rounded down and the digits right of the point always count upward, so a
// quarter of a second before the reference reads -1.750000.
std::string KLogger::ElapsedText(std::int64_t ticks) const
{
    std::int64_t seconds = ticks / counterFrequency;
    std::int64_t micro = ticks % counterFrequency * 1000000 / counterFrequency;
    if (micro < 0) {
        --seconds;
        micro += 1000000;
    }
    char text[100];
    _snprintf_s(text, sizeof text, _TRUNCATE, "%I64d.%06I64d", seconds, micro);
    return text;
}

void KLogger::FormatRecord(std::string& result, std::uint32_t index, std::uint32_t referenceIndex)
{
    if (index >= capacity) {
        result = "*OUT OF BOUNDS*";
        return;
    }
    const KLogRecord record = records[index];
    if (IsUnwritten(record)) {
        result.clear();
        return;
    }
    std::ostringstream text;
    text.imbue(std::locale::classic());
    ComposeNames(text, record);
    ComposeNumbers(text, record, records[referenceIndex]);
    result = text.str();
}

void KLogger::ComposeNames(std::ostream& text, const KLogRecord& record)
{
    const Names::const_iterator event = eventNames.find(record.kind);
    text << "% " << (event == eventNames.end() ? "unknown event" : event->second);
    ComposeParameters(text, record);
    text << " in_class " << NameOr(unknownId, idNames, idNamesLock, Signed(record.classId));
    ComposePoint(text, record);

    text << " for_object ";
    ComposePointer(text, record.object);
    text << " (" << NameOr(unknown, objectNames, objectNamesLock, record.object) << ")";

    if (record.threadId != 0) {
        const std::int32_t threadId = Signed(record.threadId);
        text << " in_thread " << threadId << " ("
             << NameOr(unknown, threadNames, threadNamesLock, threadId) << ")";
    }
}

void KLogger::ComposeParameters(std::ostream& text, const KLogRecord& record)
{
    const std::int32_t param1 = Signed(record.param1);
    const std::string number = std::to_string(param1);

    if (record.kind >= rootError && record.kind <= warning)
        text << " " << NameOr(unknownId, idNames, idNamesLock, param1);
    else if (record.kind == stateChange)
        text << " to "
             << NameOr("state_" + number, stateNames, stateNamesLock,
                       StateKey(record.classId, record.param1));
    else if (record.kind == messageSend)
        text << " " << NameOr(number, stateNames, stateNamesLock, param1);
    else if (record.kind == timingPoint)
        text << " (" << number << ", " << Signed(record.param2) << ")";
}

void KLogger::ComposePoint(std::ostream& text, const KLogRecord& record)
{
    const std::int32_t pointId = Signed(record.pointId);
    std::string name;

    if (Find(idNames, idNamesLock, pointId, name))
        text << " at " << name;
    else if (record.kind == timingPoint)
        text << " at_point " << pointId;
    else
        text << " at " << unknownId;
}

void KLogger::ComposeNumbers(std::ostream& text, const KLogRecord& record,
                             const KLogRecord& reference) const
{
    text << "\n    " << ElapsedText(record.time - reference.time) << ", " << record.kind << ", "
         << Signed(record.param1) << ", " << Signed(record.param2) << ", " << Signed(record.classId)
         << ", " << Signed(record.pointId) << ", " << static_cast<std::int64_t>(record.object)
         << ", " << Signed(record.threadId);
}

std::uint32_t KLogger::FindOldest() const
{
    const std::uint32_t next = (writeIndex.load(std::memory_order_relaxed) + 1) % capacity;
    return IsUnwritten(records[next]) ? 0 : next;
}

std::string KLogger::ComposeHeader(std::uint32_t oldest) const
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "%% Reference time: " << ElapsedText(startCounter - records[oldest].time);

    char date[26]; // ends with a line end of its own
    if (_ctime64_s(date, sizeof date, &startWallClock.time) == 0)
        text << " is approximately " << startWallClock.millitm << "ms past " << date;
    else
        text << " is wrong.\n";
    text << "%%\n";
    return text.str();
}

void KLogger::WriteDump(std::ostream& out)
{
    if (this == nullptr)
        return;
    try {
        const std::uint32_t oldest = FindOldest();
        out << ComposeHeader(oldest);

        std::string text;
        for (std::uint32_t i = capacity; i > 0; --i) {
            const std::uint32_t slot = i > oldest ? capacity - i + oldest : oldest - i;
            FormatRecord(text, slot, oldest);
            if (!text.empty())
                out << text << std::endl;
        }
    } catch (...) {
        // A dump is taken when things are already wrong; it tells what it can.
    }
}

bool KLogger::WriteDumpFile()
{
    std::ofstream file(dumpPath);
    if (!file)
        return false;
    WriteDump(file);
    return true;
}
