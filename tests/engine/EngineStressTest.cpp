// Many threads and many lives of the engine's objects.

#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "foundation/MException.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/ProcessHandles.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <mutex>
#include <set>
#include <thread>

#include <windows.h>

namespace
{

/// Runs `body` on `count` threads at once, with the thread's number.
template <class Body>
void RunOnThreads(int count, Body body)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back([&body, number] { body(number); });
    for (std::thread& thread : threads)
        thread.join();
}

/// A command that says whether it has run, and that can be found when it was lost.
class TrackedCommand : public MCommandSynchronous
{
public:
    explicit TrackedCommand(bool& executed)
        : MCommandSynchronous(MExceptionSlot()), executed(executed)
    {
        std::lock_guard<std::mutex> guard(lock);
        alive.insert(this);
    }
    ~TrackedCommand() override
    {
        std::lock_guard<std::mutex> guard(lock);
        alive.erase(this);
    }

    static std::set<TrackedCommand*> alive;

private:
    void Execute() override { executed = true; }

    static std::mutex lock;
    bool& executed;
};

std::set<TrackedCommand*> TrackedCommand::alive;
std::mutex TrackedCommand::lock;

/// Calls until it is refused; true when every call has told the truth.
bool CallUntilRefused(MCommandProcessor& processor, std::atomic<int>& abortedCalls)
{
    for (;;) {
        bool executed = false;
        const std::string outcome = Raised([&] {
            processor.ExecuteSynchronously(
                std::auto_ptr<MCommandSynchronous>(new TrackedCommand(executed)));
        });
        if (outcome.empty() != executed)
            return false;
        abortedCalls +=
            outcome == "MCommandProcessor.ExecuteSynchronously:CommandProcessingAborted";
        if (!outcome.empty())
            return true;
    }
}

void StopUnderCallers()
{
    std::atomic<int> abortedCalls{0};
    {
        MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
        processor.Start();
        RunOnThreads(5, [&](int number) {
            if (number < 3)
                EXPECT_TRUE(CallUntilRefused(processor, abortedCalls));
            else {
                Sleep(5);
                processor.Stop();
            }
        });
        EXPECT_TRUE(processor.IsAborted());
    }
    // A command that arrives when the last stop has emptied the queue is nobody's any more.
    EXPECT_LE(TrackedCommand::alive.size(), static_cast<std::size_t>(abortedCalls));
    while (!TrackedCommand::alive.empty())
        delete *TrackedCommand::alive.begin();
}

} // namespace

TEST(EngineStress, EveryCallerGetsTheAnswerToItsOwnCommand)
{
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    int inside = 0;
    RunOnThreads(4, [&](int number) {
        for (int call = 0; call < 100; ++call) {
            const MExceptionSlot slot = NewSlot();
            const int question = number * 1000 + call;
            int answer = 0;
            processor.ExecuteSynchronously(NewCommand(
                [&] {
                    EXPECT_EQ(1, ++inside);
                    answer = question;
                    --inside;
                    if (question % 2)
                        Raise(std::to_wstring(question).c_str());
                },
                slot));
            EXPECT_EQ(question, answer);
            EXPECT_EQ(question % 2 ? std::to_string(question) : "no errors",
                      FailureText(*slot.Get()));
        }
    });
    processor.Stop();
}

TEST(EngineStress, StopsUnderCallersAnswerEveryCall)
{
    for (int storm = 0; storm < 40; ++storm)
        StopUnderCallers();
}

TEST(EngineStress, ThousandLivesLeaveNoHandleBehind)
{
    const auto live = [](int lives) {
        ScriptedThread thread;
        for (int life = 0; life < lives; ++life) {
            thread.Start();
            thread.Stop();
        }
        for (int life = 0; life < lives / 4; ++life) {
            Gate fired;
            const Action open = [&] { fired.Open(); };
            MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
            processor.Start();
            processor.ExecuteSynchronously(NewCommand([] {}));
            processor.Stop();
            MDesyncEventScheduler scheduler(nullptr);
            scheduler.Enable();
            scheduler.ScheduleDesyncEvent(NewEvent(open));
            fired.Pass();
            scheduler.Disable();
            scheduler.Enable();
        }
    };
    live(4);
    const ExpectSameHandles handles;
    live(500);
}
