#include "viewer/CommandLine.h"

#include "tests/viewer/SampleDump.h"

#include <gtest/gtest.h>

namespace
{

std::string ComplaintAbout(const std::vector<std::filesystem::path>& arguments)
{
    try {
        CommandLine::Parse(arguments);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "none";
}

} // namespace

TEST(CommandLine, TakesOptionsInAnyOrderAndTimesInSeconds)
{
    const CommandLine line = CommandLine::Parse(
        {"--thread", "Host", "some.log", "--from", "-0.25", "--to", "1e1", "--trace", "-"});
    const RecordFilter filter = line.FilterFor({});
    EXPECT_EQ("Host", filter.thread);
    EXPECT_EQ(-250000, filter.from);
    EXPECT_EQ(10000000, filter.to);
    EXPECT_EQ(std::vector<std::filesystem::path>{"some.log"}, line.dumps);
    EXPECT_EQ("-", line.trace);
    EXPECT_EQ(std::vector<std::filesystem::path>{"-"}, CommandLine::Parse({}).dumps);
}

TEST(CommandLine, TakesWallClocksAsExactlyAsTheyAreWritten)
{
    const Dump dump = ReadText(sampleDump); // begins at 2026-11-15 15:12:20.782
    const auto span = [&](const char* text) {
        const RecordFilter filter =
            CommandLine::Parse({"--from", text, "--to", text}).FilterFor(dump);
        return std::make_pair(filter.from, filter.to);
    };
    EXPECT_EQ(std::make_pair(std::int64_t(0), std::int64_t(999)), span("15:12:20.782"));
    EXPECT_EQ(std::make_pair(std::int64_t(218000), std::int64_t(1217999)),
              span("2026-11-15 15:12:21"));
    EXPECT_EQ(std::make_pair(std::int64_t(39218000), std::int64_t(99217999)),
              span("2026-11-15T15:13"));
    EXPECT_EQ(31659218000, span("00:00").first); // the next midnight
    EXPECT_THROW(CommandLine::Parse({"--to", "15:12"}).FilterFor({}), UsageError);
}

TEST(CommandLine, SaysWhatItDoesNotUnderstand)
{
    EXPECT_EQ("The following argument was not expected: -x", ComplaintAbout({"-x"}));
    EXPECT_EQ("--class: 1 required CLASS missing", ComplaintAbout({"a", "--class"}));
    EXPECT_EQ("standard output takes one text at a time",
              ComplaintAbout({"--trace", "-", "--tree"}));
    EXPECT_EQ("--diff takes two dumps", ComplaintAbout({"--diff", "a", "b", "c"}));
    for (const char* number : {"now", "1,5", "1 ", "1e13", "nan", "12:00:", "1:2"})
        EXPECT_EQ(0u, ComplaintAbout({"--to", number}).find("--to takes seconds or a wall clock"))
            << number;
}
