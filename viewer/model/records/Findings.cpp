#include "viewer/model/records/Findings.h"

namespace
{

/// Sentences with numbers in them; one about nothing is not said.
class Report
{
public:
    void Say(bool holds, const std::string& sentence)
    {
        if (holds)
            sentences.push_back(sentence);
    }

    void Count(std::size_t number, const std::string& ofOne, const std::string& ofMany)
    {
        Say(number == 1, "1 " + ofOne);
        Say(number > 1, std::to_string(number) + " " + ofMany);
    }

    std::vector<std::string> sentences;
};

} // namespace

std::string Findings::DumpsBeside() const
{
    if (!recorders.empty())
        return "The minidump holds several recorders: " + recorders + "; this is " +
               std::to_string(dumpNumber) + ", and --dump chooses another.";
    return "The file holds " + std::to_string(dumpsBeside + 1) +
           " dumps; this one begins at line " + std::to_string(firstLine) +
           ", and --dump chooses another.";
}

std::vector<std::string> Findings::Sentences() const
{
    Report report;
    report.Say(noHeader, "The header is missing, so the wall clock is unknown.");
    report.Say(headerDamaged, "The header is damaged, so the wall clock is unknown.");
    report.Say(noWallClock, "The recorder did not know the wall clock.");
    report.Say(namesMissing, "The minidump does not hold all names.");
    report.Say(notMerged, "Without wall clocks it cannot be merged: its times are its own.");
    report.Say(cutOff, "The end is cut off in the middle of a record.");
    report.Say(wasMailed, "Lines had been quoted, indented, trimmed or wrapped; they were put back "
                          "together.");
    report.Say(guessedUtf16, "The text was taken for UTF-16, though no mark says so.");
    report.Say(dumpsBeside != 0, DumpsBeside());
    report.Count(ageJumps,
                 "time the ages jump back, to another reference; they were put on one axis.",
                 "times the ages jump back, to another reference; they were put on one axis.");
    report.Count(tornRecords,
                 "record is torn: its readable line and its numbers do not fit each other.",
                 "records are torn: their readable lines and their numbers do not fit each other.");
    report.Count(
        doubtfulNames,
        "line can be read in several ways, since names have \" at \" or \" in_class \" in them.",
        "lines can be read in several ways, since names have \" at \" or \" in_class \" in "
        "them.");
    report.Count(halfWritten, "record was still being written, and has no thread.",
                 "records were still being written, and have no thread.");
    report.Count(outOfBounds, "record was out of bounds.", "records were out of bounds.");
    report.Count(outOfOrder, "record stood out of order: the ring went on while it was dumped.",
                 "records stood out of order: the ring went on while it was dumped.");
    const std::string first =
        "skipped, the first at line " + std::to_string(firstForeignLine) + ".";
    report.Count(foreignLines, "line is not of the dump and was " + first,
                 "lines are not of the dump and were " + first);
    report.Count(lostBegins, "scope was entered before the oldest record.",
                 "scopes were entered before the oldest record.");
    report.Count(lostEnds, "scope had not been left, or the record of that is lost.",
                 "scopes had not been left, or the records of that are lost.");
    report.Count(strayEnds, "end of a scope fits none that is open.",
                 "ends of scopes fit none that is open.");
    return report.sentences;
}
