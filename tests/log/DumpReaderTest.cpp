#include "tools/varek-log/DumpReader.h"

#include "tests/log/SampleDump.h"
#include "tools/varek-log/Description.h"
#include "tools/varek-log/EventKind.h"
#include "tools/varek-log/Utf8.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

std::vector<std::string> FindingsIn(const std::string& text)
{
    return DumpReader::Read(text).findings.Sentences();
}

typedef std::vector<std::string> Sentences;

std::string Utf16(const std::string& ascii)
{
    std::string bytes = "\xFF\xFE";
    for (const char letter : ascii)
        bytes += {letter, '\0'};
    return bytes;
}

std::string WithCarriageReturns(std::string text)
{
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, 1, '\r');
    return text;
}

/// What is to be expected of the first `length` bytes of a dump.
struct Cut {
    Cut(const std::string& text, std::size_t length)
    {
        const std::string left = text.substr(0, text.find_last_not_of("\r\n", length - 1) + 1);
        const std::string lastLine = left.substr(left.rfind('\n') + 1);
        const bool isWholeLine = left.size() == text.size() || text[left.size()] < ' ';
        isClean = isWholeLine && lastLine.compare(0, 2, "% ") != 0;
        for (std::size_t at = 0; (at = left.find("\n    ", at)) != std::string::npos; ++at)
            ++records;
        records -= !isWholeLine && lastLine.compare(0, 4, "    ") == 0;
    }

    std::size_t records = 0;
    bool isClean;
};

} // namespace

TEST(DumpReader, TakesNamesApartThatHoldWhatStandsBetweenThem)
{
    const Dump dump = DumpReader::Read(sampleDump);
    ASSERT_EQ(9u, dump.records.size());
    EXPECT_EQ(Sentences(), dump.findings.Sentences());
    EXPECT_EQ("Station.Serve (a (b) in_class c at d)",
              Description::PlaceAndObject(dump.records[1], dump.names));
    EXPECT_EQ("State_change to off, in_class at at Station.ChangeState (a (b) in_class c at d)",
              Description::Whole(dump.records[2], dump.names));
    EXPECT_EQ("260 in_thread 36 (x)", Description::Thread(260, dump.names));
    EXPECT_EQ("Pump.Drain (FFFFFFFFFFFFFFF0)",
              Description::PlaceAndObject(dump.records[3], dump.names));
    EXPECT_EQ("Root_error RunsDry at Pump.Drain (FFFFFFFFFFFFFFF0), line 38",
              Description::Whole(dump.records[4], dump.names));
    EXPECT_EQ("Timing_point (1, -2) at (unknown).(unknown)",
              Description::Whole(dump.records[7], dump.names));
    EXPECT_EQ(-104, dump.records[0].pointId);
    EXPECT_EQ(12345901, dump.End());

    std::string lines = RecordLines(0, EventKind::ScopePush, 'f');
    lines.replace(lines.find("(unknown)"), 9, "(two\nlines)");
    const Dump broken = DumpReader::Read(lines);
    EXPECT_EQ("two\xEF\xBF\xBDlines", broken.names.Object(broken.records[0]));
    EXPECT_EQ(0u, broken.findings.foreignLines);
}

TEST(DumpReader, PairsTimesWithTheWallClockOverMidnightAndLeapDays)
{
    const Dump dump = DumpReader::Read(sampleDump);
    EXPECT_EQ(-250000, dump.reference);
    EXPECT_EQ("2026-11-15 15:12:20.532", dump.WallClockAt(-250000));
    EXPECT_EQ("2026-11-15 15:12:20.782", dump.WallClockAt(0));

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
    EXPECT_EQ("a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD",
              Utf8::FromName("a\x1B"
                             "b\n"));
}

// What is left are the records before the cut, and unless that is between two it is said.
TEST(DumpReader, InventsNothingFromAnyPrefixOfADump)
{
    for (const std::string& text : {std::string(sampleDump), WithCarriageReturns(sampleDump)}) {
        const Dump whole = DumpReader::Read(text);
        for (std::size_t length = std::strlen("%% Reference time: "); length <= text.size();
             ++length) {
            const Cut cut(text, length);
            const Dump dump = DumpReader::Read(text.substr(0, length));
            ASSERT_EQ(cut.records, dump.records.size()) << length;
            ASSERT_EQ(cut.isClean, dump.findings.Sentences().empty()) << length;
            for (std::size_t i = 0; i < cut.records; ++i)
                ASSERT_EQ(whole.records[i].threadId, dump.records[i].threadId) << length;
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
    EXPECT_EQ(Sentences{"The recorder did not know the wall clock."}, FindingsIn(header));
    EXPECT_EQ(Sentences{"The header is missing, so the wall clock is unknown."}, FindingsIn(event));

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
