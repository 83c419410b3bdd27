#include "viewer/reading/text/DumpReader.h"

#include "tests/viewer/SampleDump.h"
#include "viewer/forms/Utf8.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/text/Description.h"

#include <gtest/gtest.h>

#include <cstring>
#include <regex>

namespace
{

typedef std::vector<std::string> Sentences;

std::string Utf16(const std::string& ascii)
{
    std::string bytes = "\xFF\xFE";
    for (const char letter : ascii)
        bytes += {letter, '\0'};
    return bytes;
}

std::string WithCarriageReturns(const std::string& text)
{
    return std::regex_replace(text, std::regex("\n"), "\r\n");
}

} // namespace

TEST(DumpReader, TakesALineEndInANameForPartOfIt)
{
    std::string lines = RecordLines(0, EventKind::ScopePush, 'f');
    lines.replace(lines.find("(unknown)"), 9, "(two\nlines)");
    const Dump dump = DumpReader::Read(lines);
    EXPECT_EQ("two\xEF\xBF\xBDlines", dump.names.Object(dump.records[0]));
    EXPECT_EQ(0u, dump.findings.foreignLines);
}

TEST(DumpReader, PairsTimesWithTheWallClockOverMidnightAndLeapDays)
{
    const std::string lead = "%% Reference time: 0.000000 is approximately 0ms past ";
    EXPECT_EQ("2028-02-29 00:00:00.001",
              DumpReader::Read(lead + "Mon Feb 28 23:59:59 2028\n").WallClockAt(1001000));
    EXPECT_EQ("2027-12-31 23:59:59.999",
              DumpReader::Read(lead + "Sat Jan  1 00:00:00 2028\n").WallClockAt(-1));
}

TEST(DumpReader, ReadsWhatEditorsAndShellsMakeOfADump)
{
    const std::string plain = sampleDump;
    for (const std::string& text : {WithCarriageReturns(plain), Utf16(plain),
                                    "\xEF\xBB\xBF" + plain, Utf16(WithCarriageReturns(plain))}) {
        const Dump dump = DumpReader::Read(Utf8::FromFile(text));
        EXPECT_EQ(9u, dump.records.size());
        EXPECT_EQ(Sentences(), dump.findings.Sentences());
        EXPECT_EQ("36 Host", Description::Thread(36, dump.names));
    }
    EXPECT_EQ("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD",
              Utf8::FromFile(std::string("\xFF\xFE\xFC\0\xAC\x20\x3D\xD8\x00\xDE\x00\xD8", 12)));
    EXPECT_EQ("M\xC3\xBCll", Utf8::FromName("M\xFCll"));
    EXPECT_EQ("M\xC3\xBCll", Utf8::FromName("M\xC3\xBCll"));
    EXPECT_EQ("a\357\277\275b\357\277\275", Utf8::FromName("a\033b\n"));
}

// What is left are the records before the cut, and unless that is between two it is said.
TEST(DumpReader, InventsNothingFromAnyPrefixOfADump)
{
    for (const std::string& text : {std::string(sampleDump), WithCarriageReturns(sampleDump)}) {
        std::size_t length = std::strlen("%% Reference time: ");
        std::size_t records = 0; // before the line
        for (std::size_t begin = 0; begin < text.size(); begin = length - 1) {
            const std::size_t end = text.find_first_of("\r\n", begin);
            const bool isNumbers = text.compare(begin, 4, "    ") == 0;
            const bool isReadable = text.compare(begin, 2, "% ") == 0;
            for (; length <= text.find('\n', begin) + 1; ++length) {
                const Dump dump = DumpReader::Read(text.substr(0, length));
                const bool isWhole = length >= end;
                ASSERT_EQ(records + (isNumbers && isWhole), dump.records.size()) << length;
                ASSERT_EQ(isWhole && !isReadable, dump.findings.Sentences().empty()) << length;
            }
            records += isNumbers;
        }
    }
}

TEST(DumpReader, SaysWhatIsMissingOrDamaged)
{
    const std::string header = "%% Reference time: 0.000000 is wrong.\n%%\n";
    const std::string event = RecordLines(5, EventKind::TimingPoint, 'f');
    const std::string other = RecordLines(6, EventKind::ScopePush, 'g');
    const std::string numbers = other.substr(other.find('\n') + 1);

    EXPECT_THROW(DumpReader::Read(""), NotADump);
    EXPECT_THROW(DumpReader::Read("%PDF-1.4\n% some\n    1, 2\n"), NotADump);
    EXPECT_EQ(Sentences{"The recorder did not know the wall clock."},
              DumpReader::Read(header).findings.Sentences());
    EXPECT_EQ(Sentences{"The header is missing, so the wall clock is unknown."},
              DumpReader::Read(event).findings.Sentences());

    const Dump mixed = DumpReader::Read("$ type dump\n" + header + "noise\n" +
                                        event.substr(0, event.find('\n') + 1) + "more\n" + other +
                                        "*OUT OF BOUNDS*\n\n" + event.substr(0, 30) + "\n" +
                                        numbers + RecordLines(4, EventKind::Notify, 'f') +
                                        RecordLines(9, EventKind::Notify, 'f', 0) + header + event);
    EXPECT_EQ(4u, mixed.records.size());
    EXPECT_EQ(4, mixed.Begin());
    EXPECT_EQ((Sentences{"The recorder did not know the wall clock.",
                         "Another dump begins at line 17; it was not read.",
                         "2 records are torn: their readable lines and their numbers do not fit "
                         "each other.",
                         "1 record was still being written, and has no thread.",
                         "1 record was out of bounds.",
                         "1 record stood out of order: the ring went on while it was dumped.",
                         "3 lines are not of the dump and were skipped, the first at line 1."}),
              mixed.findings.Sentences());
}
