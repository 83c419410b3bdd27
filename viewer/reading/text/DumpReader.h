#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/model/records/RecordNames.h"
#include "viewer/reading/text/DoubtfulNames.h"

#include <string_view>

/// Reads the dumps in a text in one pass, and makes the best of what is damaged in them.
///
/// The numbers of a record count; its readable line gives the names, and confirms the numbers. A
/// line that is neither, before, behind or amid a dump, is skipped. Records stay in the order of
/// the text.
class DumpReader
{
public:
    /// None when there is nothing of a dump in the text.
    static std::vector<Dump> ReadAll(std::string_view text);

private:
    explicit DumpReader(std::string_view text);

    void ReadLines();
    std::string_view NextLine(std::size_t& position) const;
    void TakeLine(std::string_view line, bool isWhole);
    void TakeReadable(std::string_view line);
    bool TakeNumbers(std::string_view line, bool isWhole);
    std::string_view ReadableLines(std::string_view line) const;
    std::optional<RecordNames> ReadableBefore(std::string_view line,
                                              const DumpRecord& record) const;
    void Learn(const DumpRecord& record, const RecordNames& names, std::string_view line);
    bool IsInName() const;
    void TakeHeader(std::string_view line);
    void ParseHeader(std::string_view line);
    void TakeOther(std::string_view line, bool isWhole);
    void BeginDump();
    void EndDump();

    const std::string_view text;
    std::size_t next = 0;       // where the next line begins
    std::size_t lineNumber = 0; // of the line at hand, from 1
    // A readable line whose numbers have not come yet. What stands between the two belongs to it if
    // they fit: a name can have a line end in it.
    const char* readable = nullptr;
    std::size_t linesBehindReadable = 0;
    bool hasHeader = false;
    DoubtfulNames doubtful; // of the dump at hand
    Dump dump;              // at hand
    std::vector<Dump> dumps;
};
