#include "engine/FailureGuard.h"

#include "diagnostics/StructuredGuard.h"
#include "tests/engine/EngineFixtures.h"

TEST(FailureGuard, HandlerRunsOnceForWhateverLeavesTheBodyWhichGoesOn)
{
    static int handled; // a filter captures nothing
    handled = 0;
    const MCallbackFunctorPtr handler = FunctorFor([] { ++handled; });
    const MCallbackFunctorPtr throws = FunctorFor([] { throw 7; });
    EXPECT_THROW(RunWithFailureHandler(*throws, *handler), int);

    const MCallbackFunctorPtr faults =
        FunctorFor([] { *reinterpret_cast<volatile int*>(0x1234) = 1; });
    Action run = [&] { RunWithFailureHandler(*faults, *handler); };
    const GuardedBody inside = [](void* action) { (*static_cast<Action*>(action))(); };
    // Stands where an engine thread tells of faults, but lets the process go on.
    const GuardFilter outside = [](void*, _EXCEPTION_POINTERS*) -> long {
        EXPECT_EQ(2, handled);
        return GuardAccept;
    };
    EXPECT_FALSE(RunGuarded(inside, outside, &run));
    EXPECT_EQ(2, handled);
}
