#include "engine/FailureGuard.h"

#include "diagnostics/StructuredGuard.h"
#include "tests/engine/EngineFixtures.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

/// A body inside the failure guard, and that inside a guard which stands where an engine thread
/// tells of faults, but lets the process go on.
struct GuardedRun {
    explicit GuardedRun(void (*body)()) : body(FunctorFor(body)) {}

    /// False when the body met a fault.
    bool Run()
    {
        const GuardedBody inside = [](void* context) {
            GuardedRun& run = *static_cast<GuardedRun*>(context);
            RunWithFailureHandler(*run.body, *run.onFailure);
        };
        const GuardFilter outside = [](void* context, _EXCEPTION_POINTERS* pointers) -> long {
            GuardedRun& run = *static_cast<GuardedRun*>(context);
            run.handledBefore = run.handled;
            run.record = *pointers->ExceptionRecord;
            return IsCppException(pointers) ? GuardContinueSearch : GuardAccept;
        };
        return RunGuarded(inside, outside, this);
    }

    MCallbackFunctorPtr body;
    MCallbackFunctorPtr onFailure = FunctorFor([this] { ++handled; });
    int handled = 0;
    int handledBefore = 0;
    EXCEPTION_RECORD record = {};
};

} // namespace

TEST(FailureGuard, HandlerRunsOnceForEachKindOfException)
{
    GuardedRun returns([] {});
    EXPECT_TRUE(returns.Run());
    EXPECT_EQ(0, returns.handled);
    GuardedRun raises([] { Raise(L"any"); });
    EXPECT_THROW(raises.Run(), MException);
    EXPECT_EQ(1, raises.handled);
    GuardedRun throws([] { throw 7; });
    EXPECT_THROW(throws.Run(), int);
    EXPECT_EQ(1, throws.handled);
}

TEST(FailureGuard, HandlerRunsOnceForAFaultWhichGoesOnAsItWas)
{
    GuardedRun faults([] { *reinterpret_cast<volatile int*>(0x1234) = 1; });
    EXPECT_FALSE(faults.Run());
    EXPECT_EQ(1, faults.handledBefore);
    EXPECT_EQ(1, faults.handled);
    EXPECT_EQ(EXCEPTION_ACCESS_VIOLATION, faults.record.ExceptionCode);
    EXPECT_EQ(0x1234u, faults.record.ExceptionInformation[1]);
}
