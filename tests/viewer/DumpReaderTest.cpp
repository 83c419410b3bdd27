#include "viewer/reading/DumpFile.h"

#include "tests/support/Regex.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/forms/Utf8.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/text/Description.h"
#include "viewer/showing/text/RecordList.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace
{

typedef std::vector<std::string> Sentences;

std::string Utf16(const std::string& ascii, bool isBigEndian = false)
{
    std::string bytes;
    for (const char letter : ascii)
        bytes += isBigEndian ? std::string{'\0', letter} : std::string{letter, '\0'};
    return bytes;
}

/// Lines broken at the last blank that fits, as mail does it, or in the middle of words.
std::string Wrapped(const std::string& text, std::size_t width, bool atBlanks)
{
    std::string wrapped;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line); wrapped += line + "\n") {
        while (line.size() > width) {
            const std::size_t end = atBlanks ? line.rfind(' ', width) : width;
            wrapped += line.substr(0, end) + "\n";
            line.erase(0, end + atBlanks);
        }
    }
    return wrapped;
}

} // namespace

TEST(DumpReader, PairsTimesWithTheWallClockOverMidnightAndLeapDays)
{
    const std::string lead = "%% Reference time: 0.000000 is approximately 0ms past ";
    EXPECT_EQ("2028-02-29 00:00:00.001",
              ReadText(lead + "Mon Feb 28 23:59:59 2028\n").WallClockAt(1001000));
    EXPECT_EQ("2027-12-31 23:59:59.999",
              ReadText(lead + "Sat Jan  1 00:00:00 2028\n").WallClockAt(-1));
    EXPECT_EQ("1600-02-29 23:59:59.999",
              ReadText(lead + "Wed Mar  1 00:00:00 1600\n").WallClockAt(-1));
}

TEST(DumpReader, ShowsAllTextAsUtf8WithoutControls)
{
    EXPECT_EQ("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD",
              Utf8::FromUtf16(std::string("\xFC\0\xAC\x20\x3D\xD8\x00\xDE\x00\xD8", 10), false));
    EXPECT_EQ("\xEF\xBF\xBD\xEE\x80\x80", Utf8::FromUtf16(std::string("\0\xD8\0\xE0", 4), false));
    EXPECT_EQ("M\xC3\xBCll", Utf8::FromName("M\xFCll"));
    EXPECT_EQ("M\xC3\xBCll", Utf8::FromName("M\xC3\xBCll"));
    EXPECT_EQ("a\357\277\275b\357\277\275", Utf8::FromName("a\033b\n"));
    EXPECT_EQ("\357\277\275\xC3\xBC", Utf8::FromName("\xC2\x9B\xC3\xBC")); // a C1 control
}

// All records, all names, and a sentence that says what was done unless that is common.
TEST(DumpReader, ReadsWhatEditorsShellsAndMailMakeOfADump)
{
    const std::string plain = sampleDump + RecordLines(13000000, 42, "f");
    const std::string mailed = "Lines had been quoted, indented, trimmed or wrapped; they were put "
                               "back together.";
    const std::string guessed = "The text was taken for UTF-16, though no mark says so.";
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"line ends", Replaced(plain, "\n", "\r\n"), ""},
        {"marked UTF-8", "\xEF\xBB\xBF" + plain, ""},
        {"marked UTF-16", "\xFF\xFE" + Utf16(plain), ""},
        {"marked UTF-16, big-endian", "\xFE\xFF" + Utf16(Replaced(plain, "\n", "\r\n"), true), ""},
        {"trimmed", Replaced(plain, "\n +", "\n"), mailed},
        {"tabs", Replaced(Replaced(plain, "\n    ", "\n\t"), ", 36\n", ",\t36\n"), mailed},
        {"seconds", Replaced(plain, "(^|\n)(?=.)", "$010.123456 "), mailed},
        {"indented", Replaced(plain, "(^|\n)(?=.)", "$1    "), mailed},
        {"quoted", Replaced(plain, "(^|\n)(?=.)", "$1> > "), mailed},
        {"log", Replaced(plain, "(^|\n)(?=.)", "$012:00:00.123456 INFO [7] "), mailed},
        {"wrapped", Wrapped(plain, 76, true), mailed},
        {"wrapped in words", Wrapped(plain, 70, false), mailed},
        {"quoted and wrapped", Replaced(Wrapped(plain, 72, true), "(^|\n)(?=.)", "$1> "), mailed},
        {"wrapped numbers", Replaced(plain, ", 489445952, ", ",\n489445952, "), mailed},
        {"blanks at ends", Replaced(plain, "\n", "  \n"), mailed},
        {"UTF-16", Utf16(plain), guessed},
        {"UTF-16, big-endian", Utf16(Replaced(plain, "\n", "\r\n"), true), guessed},
    };
    const Recordings wanted = RecordingsOf(plain);
    for (const auto& [what, text, finding] : cases) {
        const Recordings recordings = RecordingsOf(text);
        EXPECT_EQ(finding.empty() ? Sentences() : Sentences{finding},
                  recordings[0].dump.findings.Sentences())
            << what;
        EXPECT_EQ(RecordList::Compose(wanted), RecordList::Compose(recordings)) << what;
    }
}

// A constructor has the name of its class, and so tells how to read a line with that; this tells
// how to read one with the same function, and so on.
TEST(DumpReader, TellsNamesApartByTheirNumbersOrSaysThatItCannot)
{
    const auto push = [](const char* place) { return RecordLines(0, EventKind::ScopePush, place); };
    const std::string once = push("A at B.c at d");
    const std::string constructor = RecordLines(0, EventKind::Construction, "A at B.A at B");
    const std::pair<std::string, std::string> cases[] = {
        // and how many are left, and the first
        {once, "1 A at B at c.d"},
        {once + constructor + once, "0 A at B.c at d"},
        {push("E at F.g at h") + push("E at F.c at d") + once + constructor, "0 E at F.g at h"},
        {push("A in_class B.c"), "0 A in_class B.c"},
        {push("A.f") + Replaced(push("A.c at d"), "in_class A", "in_class Z"), "1 A.f"},
    };
    for (const auto& [text, told] : cases) {
        const Dump dump = ReadText(text);
        EXPECT_EQ(told, std::to_string(dump.findings.doubtfulNames) + " " +
                            Description::Place(dump.records[0], dump.names));
    }
    EXPECT_EQ("1 line can be read in several ways, since names have \" at \" or \" in_class \" in "
              "them.",
              ReadText(once).findings.Sentences()[1]);
}

TEST(DumpReader, KnowsAHeaderInANameFromAnotherDump)
{
    std::string named = RecordLines(5, EventKind::TimingPoint, "f");
    named.replace(named.find("(unknown)"), 9, "(x\n%% Reference time: 1.000000 is wrong.\n)");
    const std::vector<Dump> dumps = DumpFile::Read(sampleDump + named + sampleDump + "noise\n");
    ASSERT_EQ(2u, dumps.size());
    EXPECT_EQ(10u, dumps[0].records.size());
    EXPECT_EQ(0u, dumps[0].findings.foreignLines);
    EXPECT_EQ(9u, dumps[1].records.size());
    EXPECT_EQ("The file holds 2 dumps; this one begins at line 25, and --dump chooses another.",
              DumpFile::Choose(dumps, 0).findings.Sentences()[0]);
    EXPECT_EQ(10u, DumpFile::Choose(dumps, 1).records.size());
    EXPECT_THROW(DumpFile::Choose(dumps, 3), std::runtime_error);

    const std::string header = "%% Reference time: 1.000000 is wrong.\n";
    const std::string cut = sampleDump + ("% Notify\n" + header);
    for (const std::string& text : {named + header, cut, cut + "\n\n\n\n\n"})
        EXPECT_EQ(2u, DumpFile::Read(text).size()) << text;
}

// The ring is dumped from the 1000th record on by another reference, 30 seconds later; at the
// 2000th the dump meets what is newer than that, and at the 2500th the reference moves once more.
// There, threads that are not known yet come first.
TEST(DumpReader, PutsAgesOnOneAxisWhereTheirReferenceWasOverwritten)
{
    const std::int64_t second = 1000000;
    std::string text = "%% Reference time: -1.000000 is approximately 0ms past "
                       "Mon Feb 28 10:00:00 2028\n";
    for (std::int64_t i = 0; i < 3000; ++i) {
        const std::int64_t time = i * 1000 + (i < 2000 ? 0 : 60 * second);
        const std::int64_t reference = i < 1000 ? 0 : i < 2500 ? 30 * second : 100 * second;
        text += RecordLines(time - reference, EventKind::TimingPoint, "p",
                            static_cast<std::int32_t>(i % 500 == 0 ? i + 3 : i % 2 + 1));
    }
    const Dump dump = ReadText(text);
    EXPECT_EQ(0, dump.Begin());
    EXPECT_EQ(60 * second + 2997 * 1000, dump.End()); // each jump takes the gap that it is in
    EXPECT_EQ("2028-02-28 10:00:01.000", dump.WallClockAt(0));
    EXPECT_EQ(Sentences{"2 times the ages jump back, to another reference; they were put on one "
                        "axis."},
              dump.findings.Sentences());
}

// What is left are the records before the cut, and unless that is between two it is said.
TEST(DumpReader, InventsNothingFromAnyPrefixOfADump)
{
    for (const std::string& text : {std::string(sampleDump), Replaced(sampleDump, "\n", "\r\n")}) {
        std::size_t length = std::strlen("%% Reference time: ");
        std::size_t records = 0; // before the line
        for (std::size_t begin = 0; begin < text.size(); begin = length - 1) {
            const std::size_t end = text.find_first_of("\r\n", begin);
            const bool isNumbers = text.compare(begin, 4, "    ") == 0;
            const bool isReadable = text.compare(begin, 2, "% ") == 0;
            for (; length <= text.find('\n', begin) + 1; ++length) {
                const Dump dump = ReadText(text.substr(0, length));
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
    const std::string event = RecordLines(5, EventKind::TimingPoint, "f");
    const std::string other = RecordLines(6, EventKind::ScopePush, "g");
    const std::string numbers = other.substr(other.find('\n') + 1);
    const std::string message = RecordLines(7, EventKind::MessageSend, "f");

    for (const std::string& text : {std::string(), std::string("%%"), std::string(100, '\0'),
                                    std::string("%PDF-1.4\n% some\n    1, 2\n")})
        EXPECT_THROW(ReadText(text), NotADump) << text;
    EXPECT_EQ(Sentences{"The recorder did not know the wall clock."},
              ReadText(header).findings.Sentences());
    EXPECT_EQ(Sentences{"The header is missing, so the wall clock is unknown."},
              ReadText(event).findings.Sentences());

    const Dump named = ReadText(Replaced(message, "send", "send hello"));
    EXPECT_EQ("hello", named.names.Parameter(named.records[0]));

    const Dump mixed = ReadText(
        "$ type dump\n" + header + "noise\n" + event.substr(0, event.find('\n') + 1) + "more\n" +
        other + "*OUT OF BOUNDS*\n\n% Scope_push\n" + numbers + "% Notify\n" + numbers +
        Replaced(numbers, "0\\.", "4000000001.") + Replaced(numbers, "0\\.", "-4000000001.") +
        RecordLines(4, EventKind::Notify, "f") + Replaced(event, "\\(0, 0", "(0, 0x") + numbers +
        message + RecordLines(9, EventKind::Notify, "f", 0));
    EXPECT_EQ(8u, mixed.records.size());
    EXPECT_EQ(4, mixed.Begin());
    EXPECT_EQ((Sentences{"The recorder did not know the wall clock.",
                         "6 records are torn: their readable lines and their numbers do not fit "
                         "each other.",
                         "1 record was still being written, and has no thread.",
                         "1 record was out of bounds.",
                         "2 records stood out of order: the ring went on while it was dumped.",
                         "5 lines are not of the dump and were skipped, the first at line 1."}),
              mixed.findings.Sentences());
}
