#include "viewer/reading/text/DumpReader.h"

#include "viewer/reading/text/RecordNumbers.h"
#include "viewer/reading/text/RecordText.h"

#include <algorithm>
#include <unordered_map>

namespace
{

constexpr std::string_view headerLead = "%% Reference time: ";
constexpr std::string_view recordLead = "% ";
constexpr std::size_t usualRecordLength = 170; // with both lines

bool BeginsWith(std::string_view text, std::string_view front)
{
    return text.substr(0, front.size()) == front;
}

/// Without the line end behind it.
std::string_view Trimmed(std::string_view line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.remove_suffix(1);
    return line;
}

bool IsEarlier(const DumpRecord& one, const DumpRecord& other)
{
    return one.time < other.time;
}

} // namespace

Dump DumpReader::Read(std::string_view text)
{
    DumpReader reader(text);
    reader.ReadLines();
    reader.Finish();
    return std::move(reader.dump);
}

void DumpReader::ReadLines()
{
    dump.records.reserve(text.size() / usualRecordLength);
    while (next < text.size() && dump.findings.secondDumpLine == 0) {
        const std::size_t end = std::min(text.find('\n', next), text.size());
        const std::string_view line = Trimmed(text.substr(next, end - next));
        ++lineNumber;
        TakeLine(line, end < text.size());
        next = end + 1;
    }
}

void DumpReader::TakeLine(std::string_view line, bool isWhole)
{
    if (BeginsWith(line, recordLead))
        TakeReadable(line);
    else if (TakeNumbers(line, isWhole))
        readable = nullptr;
    else if (BeginsWith(line, headerLead))
        TakeHeader(line);
    else
        TakeOther(line, isWhole);
}

void DumpReader::TakeReadable(std::string_view line)
{
    if (readable)
        ++dump.findings.tornRecords;
    readable = line.data();
    linesBehindReadable = 0;
}

// A last line without a line end may have been cut in the middle of its last number, unless the
// readable line confirms it.
bool DumpReader::TakeNumbers(std::string_view line, bool isWhole)
{
    DumpRecord record;
    if (!RecordNumbers::Parse(line, record))
        return false;

    const std::optional<RecordText> names = ReadableBefore(line, record);
    if (!names && !isWhole)
        return false;
    if (names)
        Learn(record, *names);
    else
        ++dump.findings.tornRecords;
    if (record.threadId == 0)
        ++dump.findings.halfWritten;
    dump.records.push_back(record);
    return true;
}

std::optional<RecordText> DumpReader::ReadableBefore(std::string_view line,
                                                     const DumpRecord& record) const
{
    if (!readable)
        return std::nullopt;
    const std::string_view lines(readable, static_cast<std::size_t>(line.data() - readable));
    return RecordText::Parse(Trimmed(lines), record);
}

void DumpReader::Learn(const DumpRecord& record, const RecordText& names)
{
    dump.names.Learn(record, names);
    dump.findings.foreignLines -= linesBehindReadable;
    linesBehindReadable = 0;
}

void DumpReader::TakeHeader(std::string_view line)
{
    if (hasHeader || !dump.records.empty()) {
        dump.findings.secondDumpLine = lineNumber;
        return;
    }
    hasHeader = true;
    ParseHeader(line.substr(headerLead.size()));
}

void DumpReader::ParseHeader(std::string_view line)
{
    using namespace RecordNumbers;
    int milliseconds = 0;
    if (!TakeTime(line, dump.reference))
        dump.findings.headerDamaged = true;
    else if (line == " is wrong.")
        dump.findings.noWallClock = true;
    else if (TakeFront(line, " is approximately ") && TakeNumber(line, milliseconds) &&
             TakeFront(line, "ms past "))
        dump.start = WallClock::Parse(line, milliseconds);
    if (!dump.start && !dump.findings.noWallClock)
        dump.findings.headerDamaged = true;
}

void DumpReader::TakeOther(std::string_view line, bool isWhole)
{
    Findings& findings = dump.findings;
    if (line == "*OUT OF BOUNDS*") {
        ++findings.outOfBounds;
    } else if (line == "%" || (readable && !isWhole)) {
        findings.cutOff = true;
    } else if (!line.empty() && line != "%%") {
        if (findings.foreignLines++ == 0)
            findings.firstForeignLine = lineNumber;
        ++linesBehindReadable;
    }
}

void DumpReader::Finish()
{
    if (!hasHeader && dump.records.empty())
        throw NotADump();
    dump.findings.noHeader = !hasHeader;
    if (readable)
        dump.findings.cutOff = true;
    PutInOrder();
}

// Races between threads are the rule and not worth a word; a thread by itself is always in order.
void DumpReader::PutInOrder()
{
    if (std::is_sorted(dump.records.begin(), dump.records.end(), IsEarlier))
        return;
    std::unordered_map<std::int32_t, std::int64_t> latest;
    for (const DumpRecord& record : dump.records) {
        std::int64_t& time = latest.try_emplace(record.threadId, record.time).first->second;
        if (record.time < time)
            ++dump.findings.outOfOrder;
        time = std::max(time, record.time);
    }
    std::stable_sort(dump.records.begin(), dump.records.end(), IsEarlier);
}
