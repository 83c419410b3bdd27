#pragma once

#include "viewer/model/records/Dump.h"

#include <stdexcept>
#include <string_view>

/// A text in which there is nothing of a dump.
struct NotADump : std::runtime_error {
    NotADump() : std::runtime_error("this is not a dump of a flight recorder") {}
};

/// Reads the text of a dump in one pass, and makes the best of what is damaged in it.
///
/// The numbers of a record count; its readable line gives the names, and confirms the numbers. A
/// line that is neither, before, behind or amid the dump, is skipped. Records are put in order of
/// time: threads race for their places in the ring, and a ring that goes on while it is dumped
/// shows its latest records amid older ones.
class DumpReader
{
public:
    /// Raises `NotADump`.
    static Dump Read(std::string_view text);

private:
    explicit DumpReader(std::string_view text) : text(text) {}

    void ReadLines();
    void TakeLine(std::string_view line, bool isWhole);
    void TakeReadable(std::string_view line);
    bool TakeNumbers(std::string_view line, bool isWhole);
    std::optional<RecordText> ReadableBefore(std::string_view line, const DumpRecord& record) const;
    void Learn(const DumpRecord& record, const RecordText& names);
    void TakeHeader(std::string_view line);
    void ParseHeader(std::string_view line);
    void TakeOther(std::string_view line, bool isWhole);
    void Finish();
    void PutInOrder();

    const std::string_view text;
    std::size_t next = 0;       // where the next line begins
    std::size_t lineNumber = 0; // of the line at hand, from 1
    // A readable line whose numbers have not come yet. What stands between the two belongs to it if
    // they fit: a name can have a line end in it.
    const char* readable = nullptr;
    std::size_t linesBehindReadable = 0;
    bool hasHeader = false;
    Dump dump;
};
