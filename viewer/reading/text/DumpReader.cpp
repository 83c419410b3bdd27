#include "viewer/reading/text/DumpReader.h"

#include "viewer/reading/text/RecordNumbers.h"
#include "viewer/reading/text/RecordText.h"

#include <algorithm>

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

} // namespace

std::vector<Dump> DumpReader::ReadAll(std::string_view text)
{
    DumpReader reader(text);
    reader.ReadLines();
    reader.EndDump();
    return std::move(reader.dumps);
}

DumpReader::DumpReader(std::string_view text) : text(text)
{
    dump.records.reserve(text.size() / usualRecordLength);
}

void DumpReader::ReadLines()
{
    while (next < text.size()) {
        const std::string_view line = NextLine(next);
        ++lineNumber;
        TakeLine(Trimmed(line), line.back() == '\n');
    }
}

/// With its line end, which the last line may lack.
std::string_view DumpReader::NextLine(std::size_t& position) const
{
    const std::size_t begin = position;
    position = std::min(text.find('\n', begin), text.size() - 1) + 1;
    return text.substr(begin, position - begin);
}

void DumpReader::TakeLine(std::string_view line, bool isWhole)
{
    if (BeginsWith(line, recordLead))
        TakeReadable(line);
    else if (TakeNumbers(line, isWhole))
        readable = nullptr;
    else if (BeginsWith(line, headerLead) && !IsInName())
        TakeHeader(line);
    else
        TakeOther(line, isWhole);
}

void DumpReader::TakeReadable(std::string_view line)
{
    if (readable)
        ++dump.findings.tornRecords;
    readable = line.data() + recordLead.size();
    linesBehindReadable = 0;
}

// A last line without a line end may have been cut in the middle of its last number, unless the
// readable line confirms it.
bool DumpReader::TakeNumbers(std::string_view line, bool isWhole)
{
    DumpRecord record;
    if (!RecordNumbers::Parse(line, record))
        return false;

    const std::optional<RecordNames> names = ReadableBefore(line, record);
    if (!names && !isWhole)
        return false;
    if (names)
        Learn(record, *names, ReadableLines(line));
    else
        ++dump.findings.tornRecords;
    if (record.threadId == 0)
        ++dump.findings.halfWritten;
    dump.records.push_back(record);
    return true;
}

std::optional<RecordNames> DumpReader::ReadableBefore(std::string_view line,
                                                      const DumpRecord& record) const
{
    if (!readable)
        return std::nullopt;
    return RecordText::Parse(ReadableLines(line), record);
}

/// What stands from the readable line, behind its lead, up to `line`.
std::string_view DumpReader::ReadableLines(std::string_view line) const
{
    return Trimmed(std::string_view(readable, static_cast<std::size_t>(line.data() - readable)));
}

void DumpReader::Learn(const DumpRecord& record, const RecordNames& names, std::string_view line)
{
    if (RecordText::IsDoubtful(line)) {
        doubtful.Add(record, line);
        dump.names.Learn(record, {"", "", "", names.object, names.thread});
    } else {
        dump.names.Learn(record, names);
    }
    dump.findings.foreignLines -= linesBehindReadable;
    linesBehindReadable = 0;
}

// What looks like a header stands in a name if the numbers that follow confirm the whole.
bool DumpReader::IsInName() const
{
    constexpr int mostLinesOfAName = 4;
    std::size_t position = next;
    for (int line = 0; readable && position < text.size() && line < mostLinesOfAName; ++line) {
        const std::string_view numbers = Trimmed(NextLine(position));
        DumpRecord record;
        if (RecordNumbers::Parse(numbers, record))
            return ReadableBefore(numbers, record).has_value();
    }
    return false;
}

void DumpReader::TakeHeader(std::string_view line)
{
    if (hasHeader || !dump.records.empty())
        BeginDump();
    hasHeader = true;
    dump.findings.firstLine = lineNumber;
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

void DumpReader::BeginDump()
{
    EndDump();
    dump = Dump();
    doubtful = DoubtfulNames();
    hasHeader = false;
    readable = nullptr;
    linesBehindReadable = 0;
}

void DumpReader::EndDump()
{
    if (!hasHeader && dump.records.empty())
        return;
    dump.findings.noHeader = !hasHeader;
    dump.findings.cutOff |= readable != nullptr;
    dump.findings.doubtfulNames = doubtful.Resolve(dump.names);
    dumps.push_back(std::move(dump));
}
