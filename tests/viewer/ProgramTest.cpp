// The program as a whole: what it reads, where it writes, and how it ends.

#include "tests/viewer/SampleDump.h"
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
    TextFile::Write(folder + "long.log", std::string(70000, '\n') + sampleDump);
    EXPECT_EQ(0, Run("- < long.log"));
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
    const char source[] = "\"source\":\"M\xC3\xBCll \\\"<\xEF\xBF\xBD.log\"";
    EXPECT_NE(std::string::npos, Text("out").find(source)) << Text("out");

    TextFile::Write(folder + "cut.log", std::string(sampleDump).substr(0, 900));
    EXPECT_EQ(0, Run("--tree cut.log"));
    EXPECT_NE(std::string::npos, Text("err").find("The end is cut off"));
}

TEST_F(Program, DoesWhatItIsToldOrTellsByItsExitCodeWhatWentWrong)
{
    TextFile::Write(folder + "none.dmp", "MDMP");
    TextFile::Write(folder + "none.log", "none");
    const std::tuple<int, const char*, const char*> cases[] = {
        // and among what it says
        {1, "no-such.log", "varek-log: no-such.log: No such file or directory\n"},
        {1, ".", "varek-log: .: Is a directory\n"},
        {1, "--trace no-such/trace.json sample.log", "No such file"},
        {1, "--trace /dev/full sample.log", "No space left"},
        {1, "--html /dev/full sample.log", "No space left"},
        {1, "--html ./sample.log sample.log", "this is the dump itself"},
        {1, "--dump 2 sample.log", "varek-log: sample.log: there is only 1 dump\n"},
        {1, "none.log", "varek-log: none.log: this is not a dump of a flight recorder\n"},
        {1, "none.dmp", "does not hold a flight recorder; one that"},
        {0, "--tree --class Pumps sample.log", "varek-log: nothing passes the filters\n"},
        {2, "--nothing", "varek-log --help tells more"},
        {0, "--help", "--help"},
        {0, "--version", "varek-log "},
        {0, "--stats --width 0 sample.log", "  Station.Serve\n"},
        {0, "--stats --by class --object 0xfffffffffffffff0 --format csv sample.log",
         "\n\"Pump\",1,0,20,20,20,20,20,0,0\n"},
        {0, "--stats --by object --format json sample.log", R"({"name":"a (b) in_class c at d")"},
        {0, "--diff sample.log sample.log", "\nThe same errors, as often\n"},
        {0, "--html - sample.log", "<html"},
    };
    for (const auto& [code, arguments, said] : cases) {
        EXPECT_EQ(code, Run(arguments)) << arguments;
        EXPECT_NE(std::string::npos, (Text("out") + Text("err")).find(said)) << arguments;
    }
    EXPECT_EQ(sampleDump, Text("sample.log"));
}
