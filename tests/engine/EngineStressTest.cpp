// Many threads and many lives of the engine's objects.

#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"

TEST(EngineStress, EveryCallerGetsTheAnswerToItsOwnCommandAndACopyOfItsChain)
{
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    int inside = 0;
    RunOnThreads(4, [&](int number) {
        const MExceptionSlot slot = NewSlot();
        for (int call = 0; call < 100; ++call) {
            const std::string question = std::to_string(number) + "." + std::to_string(call);
            const bool fails = call % 2 != 0;
            std::string answer;
            const Action action = [&] {
                EXPECT_EQ(1, ++inside);
                EXPECT_EQ(0u, slot->GetErrorCount()); // emptied of the last failure
                answer = question;
                --inside;
                if (fails)
                    Raise(question);
            };
            processor.ExecuteSynchronously(NewCommand(action, slot));
            EXPECT_EQ(question, answer);
            EXPECT_EQ(fails ? 2u : 0u, slot->GetErrorCount());
            EXPECT_EQ(fails ? question : "no errors", FailureText(*slot.Get()));
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
        const auto callUntilRefused = [&] {
            std::string outcome;
            while (outcome.empty()) {
                bool executed = false;
                const Action action = [alive, &executed] { executed = true; };
                outcome = Raised([&] { processor.ExecuteSynchronously(NewCommand(action)); });
                EXPECT_EQ(outcome.empty(), executed);
            }
            abortedCalls +=
                outcome == "MCommandProcessor.ExecuteSynchronously:CommandProcessingAborted";
        };
        RunOnThreads(5, [&](int number) {
            if (number < 3)
                return callUntilRefused();
            Sleep(5);
            processor.Stop();
        });
        EXPECT_LE(alive.use_count() - 1, abortedCalls);
    }
}

TEST(EngineStress, ThousandLivesLeaveNoHandleBehind)
{
    const auto live = [](int lives) {
        ScriptedThread thread;
        for (int life = 0; life < lives; life += 4) {
            thread.Start();
            thread.Stop();
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
    live(1000);
}
