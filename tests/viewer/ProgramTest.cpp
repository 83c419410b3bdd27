// The program as a whole: what it reads, where it writes, and how it ends.

#include "tests/viewer/SampleDump.h"
#include "tests/viewer/TraceRules.h"
#include "viewer/reading/TextFile.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <sys/wait.h>

namespace
{

struct Program : testing::Test {
    Program() { TextFile::Write(folder + "sample.log", sampleDump); }
    ~Program() override { std::filesystem::remove_all(folder); }

    /// Runs it in a folder of its own; its output and complaints go to files there.
    int Run(const std::string& arguments) const
    {
        const std::string command =
            "cd '" + folder + "' && '" VAREK_LOG_PROGRAM "' " + arguments + " >out 2>err";
        return WEXITSTATUS(std::system(command.c_str()));
    }

    std::string Text(const std::string& file) const { return TextFile::Read(folder + file); }

    static std::string NewFolder()
    {
        std::string folder = testing::TempDir() + "varek-log-XXXXXX";
        return mkdtemp(folder.data()) + std::string("/");
    }

    const std::string folder = NewFolder();
};

} // namespace

TEST_F(Program, ReadsAFileOrStandardInputAndWritesWhereItIsTold)
{
    EXPECT_EQ(0, Run("sample.log"));
    const std::string summary = Text("out");
    EXPECT_EQ(0u, summary.find("9 records in 12.345901 seconds\n"));
    EXPECT_EQ(0, Run("- < sample.log"));
    EXPECT_EQ(summary, Text("out"));

    EXPECT_EQ(0, Run("--tree --trace trace.json --class Pump sample.log"));
    EXPECT_EQ(0u, Text("out").find("Thread 36 Host\n"));
    EXPECT_EQ(0, Run("--trace - --class Pump sample.log"));
    EXPECT_EQ(Text("trace.json"), Text("out"));
    EXPECT_EQ("", Text("err"));
    EXPECT_EQ(0, Run("--list --from 15:12:20.782 --to 15:12:21 sample.log"));
    const std::string list = Text("out");
    EXPECT_EQ(8, std::count(list.begin(), list.end(), '\n'));

    TextFile::Write(folder + "M\xFCll \"<\x01.log", sampleDump);
    EXPECT_EQ(0, Run("--trace - M*.log"));
    EXPECT_EQ("M\xC3\xBCll \"<\xEF\xBF\xBD.log", Json::parse(Text("out"))["otherData"]["source"]);

    TextFile::Write(folder + "cut.log", std::string(sampleDump).substr(0, 900));
    EXPECT_EQ(0, Run("--tree cut.log"));
    EXPECT_NE(std::string::npos, Text("err").find("The end is cut off"));
}

TEST_F(Program, TellsByItsExitCodeWhatWentWrong)
{
    EXPECT_EQ(1, Run("no-such.log"));
    EXPECT_EQ("varek-log: no-such.log: No such file or directory\n", Text("err"));
    EXPECT_EQ(1, Run("."));
    EXPECT_EQ("varek-log: .: Is a directory\n", Text("err"));
    EXPECT_EQ(1, Run("--trace no-such/trace.json sample.log"));
    EXPECT_EQ(1, Run("--trace /dev/full sample.log"));
    EXPECT_EQ(1, Run("--html ./sample.log sample.log"));
    EXPECT_EQ(sampleDump, Text("sample.log"));
    EXPECT_EQ(1, Run("--dump 2 sample.log"));
    EXPECT_EQ("varek-log: sample.log: there is only 1 dump\n", Text("err"));
    EXPECT_EQ(1, Run("err"));
    EXPECT_EQ("varek-log: err: this is not a dump of a flight recorder\n", Text("err"));
    TextFile::Write(folder + "none.dmp", "MDMP");
    EXPECT_EQ(1, Run("none.dmp"));
    EXPECT_NE(std::string::npos, Text("err").find("does not hold a flight recorder; one that"));
    EXPECT_EQ(0, Run("--tree --class Pumps sample.log"));
    EXPECT_EQ("varek-log: nothing passes the filters\n", Text("err"));
    EXPECT_EQ(2, Run("--nothing"));
    EXPECT_EQ(0, Run("--help"));
    EXPECT_EQ(0, Run("--version"));
}
