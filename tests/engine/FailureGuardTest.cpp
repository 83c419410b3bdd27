#include "engine/FailureGuard.h"

#include "diagnostics/StructuredGuard.h"
#include "foundation/MException.h"
#include "tests/engine/EngineFixtures.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

/// Runs a body inside the failure guard, and that inside a guard which stands where an engine
/// thread tells of faults, but lets the process go on.
struct GuardedRun {
    /// False when the body met a fault.
    bool Run(const Action& body)
    {
        const Action countFailure = [this] { ++handled; };
        bodyFunctor = FunctorFor(body);
        failureFunctor = FunctorFor(countFailure);
        return RunGuarded(Inside, Outside, this);
    }

    static void Inside(void* context)
    {
        GuardedRun& run = *static_cast<GuardedRun*>(context);
        RunWithFailureHandler(*run.bodyFunctor, *run.failureFunctor);
    }

    static long Outside(void* context, _EXCEPTION_POINTERS* pointers)
    {
        GuardedRun& run = *static_cast<GuardedRun*>(context);
        run.handledBefore = run.handled;
        run.record = *pointers->ExceptionRecord;
        return IsCppException(pointers) ? GuardContinueSearch : GuardAccept;
    }

    MCallbackFunctorPtr bodyFunctor;
    MCallbackFunctorPtr failureFunctor;
    int handled = 0;
    int handledBefore = 0;
    EXCEPTION_RECORD record = {};
};

} // namespace

TEST(FailureGuard, HandlerRunsOnceForEachKindOfException)
{
    GuardedRun run;
    EXPECT_TRUE(run.Run([] {}));
    EXPECT_EQ(0, run.handled);
    EXPECT_THROW(run.Run([] { Raise(L"any"); }), MException);
    EXPECT_EQ(1, run.handled);
    EXPECT_THROW(run.Run([] { throw 7; }), int);
    EXPECT_EQ(2, run.handled);
}

TEST(FailureGuard, HandlerRunsOnceForAFaultWhichGoesOnAsItWas)
{
    GuardedRun run;
    EXPECT_FALSE(run.Run([] { *reinterpret_cast<volatile int*>(0x1234) = 1; }));
    EXPECT_EQ(1, run.handledBefore);
    EXPECT_EQ(1, run.handled);
    EXPECT_EQ(EXCEPTION_ACCESS_VIOLATION, run.record.ExceptionCode);
    EXPECT_EQ(0x1234u, run.record.ExceptionInformation[1]);
}
