#include "engine/FailureGuard.h"

#include "diagnostics/StructuredGuard.h"
#include "tests/engine/EngineFixtures.h"

TEST(FailureGuard, HandlerRunsOnceForAForeignException)
{
    int handled = 0;
    const MCallbackFunctorPtr body = FunctorFor([] { throw 7; });
    const MCallbackFunctorPtr onFailure = FunctorFor([&] { ++handled; });
    EXPECT_THROW(RunWithFailureHandler(*body, *onFailure), int);
    EXPECT_EQ(1, handled);
}

TEST(FailureGuard, HandlerRunsOnceForAFaultWhichGoesOnAsItWas)
{
    struct FaultingRun {
        MCallbackFunctorPtr body = FunctorFor([] { *reinterpret_cast<volatile int*>(0x1234) = 1; });
        MCallbackFunctorPtr onFailure = FunctorFor([this] { ++handled; });
        int handled = 0;
        int handledBefore = 0;
        EXCEPTION_RECORD record = {};
    } run;
    const GuardedBody inside = [](void* context) {
        const FaultingRun& faulting = *static_cast<FaultingRun*>(context);
        RunWithFailureHandler(*faulting.body, *faulting.onFailure);
    };
    // Stands where an engine thread tells of faults, but lets the process go on.
    const GuardFilter outside = [](void* context, _EXCEPTION_POINTERS* pointers) -> long {
        FaultingRun& faulting = *static_cast<FaultingRun*>(context);
        faulting.handledBefore = faulting.handled;
        faulting.record = *pointers->ExceptionRecord;
        return GuardAccept;
    };
    EXPECT_FALSE(RunGuarded(inside, outside, &run));
    EXPECT_EQ(1, run.handledBefore);
    EXPECT_EQ(1, run.handled);
    EXPECT_EQ(EXCEPTION_ACCESS_VIOLATION, run.record.ExceptionCode);
    EXPECT_EQ(0x1234u, run.record.ExceptionInformation[1]);
}
