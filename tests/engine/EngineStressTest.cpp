// Many threads and many lives of the engine's objects.

#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <windows.h>

TEST(EngineStress, EveryCallerGetsTheAnswerToItsOwnCommand)
{
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    int inside = 0;
    RunOnThreads(4, [&](int number) {
        const MExceptionSlot slot = NewSlot();
        for (int call = 0; call < 100; ++call) {
            const int question = number * 1000 + call;
            int answer = 0;
            processor.ExecuteSynchronously(NewCommand(
                [&] {
                    EXPECT_EQ(1, ++inside);
                    EXPECT_EQ(0u, slot->GetErrorCount()); // emptied of the last failure
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
    // A command that arrives when the last stop has emptied the queue is nobody's any more.
    LeakCheck::Skip();
    for (int storm = 0; storm < 40; ++storm) {
        const auto alive = std::make_shared<int>();
        std::atomic<int> abortedCalls{0};
        MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
        processor.Start();
        RunOnThreads(5, [&](int number) {
            if (number < 2) {
                Sleep(5);
                processor.Stop();
            }
            std::string outcome;
            while (number >= 2 && outcome.empty()) {
                bool executed = false;
                const Action action = [alive, &executed] { executed = true; };
                outcome = Raised([&] { processor.ExecuteSynchronously(NewCommand(action)); });
                EXPECT_EQ(outcome.empty(), executed);
                abortedCalls +=
                    outcome == "MCommandProcessor.ExecuteSynchronously:CommandProcessingAborted";
            }
        });
        EXPECT_TRUE(processor.IsAborted());
        EXPECT_LE(alive.use_count() - 1, abortedCalls);
    }
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
            MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
            processor.Start();
            processor.ExecuteSynchronously(NewCommand([] {}));
            processor.Stop();
            MDesyncEventScheduler scheduler(nullptr);
            scheduler.Enable();
            scheduler.ScheduleDesyncEvent(NewEvent([&] { fired.Open(); }));
            fired.Pass();
            scheduler.Disable();
            scheduler.Enable();
        }
    };
    live(4);
    const ExpectSameHandles handles;
    live(500);
}
