#include "viewer/CommandLine.h"

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
    EXPECT_EQ("Host", line.filter.thread);
    EXPECT_EQ(-250000, line.filter.from);
    EXPECT_EQ(10000000, line.filter.to);
    EXPECT_EQ("some.log", line.dump);
    EXPECT_EQ("-", line.trace);
    EXPECT_FALSE(line.ShowSummary());
    EXPECT_FALSE(CommandLine::Parse({"--html", "page.html"}).ShowSummary());
    EXPECT_TRUE(CommandLine::Parse({}).ShowSummary());
    EXPECT_EQ("-", CommandLine::Parse({}).dump);
}

TEST(CommandLine, SaysWhatItDoesNotUnderstand)
{
    EXPECT_EQ("unknown option -x", ComplaintAbout({"-x"}));
    EXPECT_EQ("--class needs a value", ComplaintAbout({"a", "--class"}));
    EXPECT_EQ("--html needs a value", ComplaintAbout({"--html", "", "a"}));
    EXPECT_EQ("standard output takes one text at a time",
              ComplaintAbout({"--trace", "-", "--tree"}));
    EXPECT_EQ("one dump at a time, not also b", ComplaintAbout({"a", "b"}));
    for (const char* number : {"now", "1,5", "1 ", "1e13", "nan"})
        EXPECT_EQ(0u, ComplaintAbout({"--to", number}).find("--to takes a number of seconds"))
            << number;
}
