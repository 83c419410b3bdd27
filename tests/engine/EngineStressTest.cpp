// Many threads, many lives, and every failing allocation of the engine's objects.

#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"

TEST(EngineStress, EveryCallIsAnsweredToItsOwnCallerWhoeverStopsTheProcessor)
{
    // A command that arrives when the last stop has emptied the queue is nobody's any more.
    LeakCheck::Skip();
    std::size_t handles = 0;
    for (int storm = 0; storm < 40; ++storm) {
        MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 1);
        processor.Start();
        int inside = 0;
        RunOnThreads(5, [&](int number) {
            if (number > 2) {
                Sleep(5);
                return processor.Stop();
            }
            const MExceptionSlot slot = NewSlot();
            int calls = 0;
            for (bool refused = false; !refused;) {
                const std::string answer = std::to_string(number) + "." + std::to_string(++calls);
                const Action action = [&] {
                    EXPECT_EQ(1, ++inside);
                    EXPECT_EQ(0u, slot->GetErrorCount()); // emptied of the last answer
                    --inside;
                    Raise(answer);
                };
                const auto call = [&] { processor.ExecuteSynchronously(NewCommand(action, slot)); };
                refused = Raised(call) != "";
                EXPECT_EQ(!refused, FailureText(*slot.Get()) == answer);
            }
        });
        if (storm == 0)
            handles = ListHandles().size(); // what the first opens for good is open
    }
    EXPECT_GE(handles, ListHandles().size());
}

TEST(EngineStress, LivesLeaveNoHandleBehind)
{
    const auto live = [](int lives) {
        for (int life = 0; life < lives; ++life) {
            MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
            MDesyncEventScheduler scheduler(nullptr);
            processor.Start();
            scheduler.Enable();
            processor.ExecuteSynchronously(NewCommand([] {}));
            processor.Stop();
        }
    };
    live(1);
    const ExpectSameHandles handles;
    live(100);
}

TEST(EngineStress, ConstructionThatRunsOutOfMemoryLeavesNothingBehind)
{
    const Action builds[] = {[] { MCommandProcessor(nullptr, nullptr, nullptr, nullptr, 0); },
                             [] { MDesyncEventScheduler scheduler(nullptr); }, [] { NewSlot(); }};
    for (const Action& build : builds) {
        build();
        const ExpectSameHandles handles;
        ForEachFailingAllocation(AllocationFailure::Throws, build, [](ShortageOutcome outcome) {
            EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome);
        });
    }
}
