// Many threads and many lives of the engine's objects.

#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"

TEST(EngineStress, EveryCallIsAnsweredToItsOwnCallerWhoeverStopsTheProcessor)
{
    // A command that arrives when the last stop has emptied the queue is nobody's any more.
    LeakCheck::Skip();
    for (int storm = 0; storm < 40; ++storm) {
        MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 1);
        processor.Start();
        int inside = 0;
        const auto callUntilRefused = [&](int number) {
            const std::string failure = "failure of " + std::to_string(number);
            const MExceptionSlot slot = NewSlot();
            for (bool fails = false;; fails = !fails) {
                int answer = -1;
                const Action action = [&] {
                    EXPECT_EQ(1, ++inside);
                    EXPECT_EQ(0u, slot->GetErrorCount()); // emptied of the last failure
                    answer = number;
                    --inside;
                    if (fails)
                        Raise(failure);
                };
                const auto call = [&] { processor.ExecuteSynchronously(NewCommand(action, slot)); };
                const bool refused = Raised(call) != "";
                EXPECT_EQ(refused ? -1 : number, answer);
                if (refused)
                    return;
                EXPECT_EQ(fails ? failure : "no errors", FailureText(*slot.Get()));
            }
        };
        RunOnThreads(5, [&](int number) {
            if (number < 3)
                return callUntilRefused(number);
            Sleep(5);
            processor.Stop();
        });
    }
}

TEST(EngineStress, ThousandLivesLeaveNoHandleBehind)
{
    const auto live = [](int lives) {
        ScriptedThread thread;
        for (int life = 0; life < lives; life += 4) {
            thread.Start();
            thread.Stop();
            MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
            processor.Start();
            processor.ExecuteSynchronously(NewCommand([] {}));
            processor.Stop();
            Gate fired;
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
