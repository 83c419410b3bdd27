// What the engine raises when the kernel answers what nothing can have it answer on Windows.

#include "explore/kernel/Answers.h"
#include "engine/MCommandProcessor.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"

#include <memory>
#include <vector>

namespace
{

const char one[] = "WaitForSingleObject";
const char many[] = "WaitForMultipleObjects";

/// An engine thread that stays, since a start that fails leaves it to itself.
ScriptedThread& NewThread()
{
    static std::vector<std::unique_ptr<ScriptedThread>>& threads =
        *new std::vector<std::unique_ptr<ScriptedThread>>;
    threads.emplace_back(new ScriptedThread);
    return *threads.back();
}

struct Told {
    const char* call;
    std::uint32_t answer;
    std::uint32_t lastError;
    const char* raised;
};

/// What `operation` raises when its first such call is told its answer.
std::string RaisedWhenTold(const Told& told, const Action& operation)
{
    AnswerNext(told.call, told.answer, told.lastError);
    return Raised(operation);
}

} // namespace

TEST(Answers, StartLeavesAnInactiveThreadWhateverItsWaitAnswers)
{
    LeakCheck::Skip(); // the threads are left to themselves
    const Told answers[] = {{"_beginthreadex", 11, 0, "BeginThread errno=11"},
                            {many, 128, 0, "Abandoned status=128"},
                            {many, 129, 0, "Abandoned status=129"},
                            {many, 130, 0, "Unexpected status=130"},
                            {many, 258, 0, "Unexpected status=258"},
                            {many, WAIT_FAILED, 6, "WaitFailed winErrorCode=6"}};
    for (const Told& told : answers) {
        ScriptedThread& thread = NewThread();
        EXPECT_EQ(std::string("MEngineThread.Start:") + told.raised,
                  RaisedWhenTold(told, [&] { thread.Start(); }));
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

TEST(Answers, FlushAndStopLeaveAThreadThatCanBeStopped)
{
    const Told flushes[] = {{many, 128, 0, "Flush:Abandoned status=128"},
                            {many, 130, 0, "Flush:Unexpected status=130"},
                            {many, WAIT_FAILED, 6, "Flush:WaitFailed winErrorCode=6"}};
    const Told stops[] = {{one, 128, 0, "Stop:Abandoned"},
                          {one, 129, 0, "Stop:Unexpected status=129"},
                          {one, WAIT_FAILED, 6, "Stop:WaitFailed winErrorCode=6"}};
    ScriptedThread thread;
    for (const Told& told : flushes) {
        thread.Start();
        EXPECT_EQ(std::string("MEngineThread.") + told.raised,
                  RaisedWhenTold(told, [&] { thread.Flush(); }));
        thread.Stop();
    }
    for (const Told& told : stops) {
        thread.Start();
        EXPECT_EQ(std::string("MEngineThread.") + told.raised,
                  RaisedWhenTold(told, [&] { thread.Stop(); }));
        EXPECT_TRUE(thread.IsThreadActive());
        thread.Stop();
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

TEST(Answers, CallersOfAProcessorAreToldAndItGoesOn)
{
    const Told answers[] = {
        {one, 128, 6, "IsAborted:ErrorAccessingEvent winErrorCode=6"},
        {"CreateEventW", 0, 8, "ExecuteSynchronously:WaitFailed winErrorCode=8"},
        {many, 128, 0, "ExecuteSynchronously:Abandoned"},
        {many, 129, 0, "ExecuteSynchronously:Abandoned"},
        {many, WAIT_FAILED, 6, "ExecuteSynchronously:WaitFailed winErrorCode=6"}};
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    for (const Told& told : answers) {
        EXPECT_EQ(std::string("MCommandProcessor.") + told.raised,
                  RaisedWhenTold(told, [&] { processor.ExecuteSynchronously(NewCommand([] {})); }));
        EXPECT_EQ("", Raised([&] { processor.ExecuteSynchronously(NewCommand([] {})); }));
    }
    processor.Stop();
}
