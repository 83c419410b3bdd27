#include "engine/FailureGuard.h"

#include "diagnostics/StructuredGuard.h"
#include "tests/engine/EngineFixtures.h"

namespace
{

struct GuardedRun {
    void Throw() { throw 7; }
    void Fault() { *reinterpret_cast<volatile int*>(0x1234) = 1; }
    void Handle() { ++handled; }

    void Run(void (GuardedRun::*method)())
    {
        MCallbackFunctorImp<GuardedRun> body(this, method), onFailure(this, &GuardedRun::Handle);
        RunWithFailureHandler(body, onFailure);
    }

    int handled = 0;
    int handledAtTheFault = 0;
};

} // namespace

TEST(FailureGuard, HandlerRunsOnceForWhateverLeavesTheBodyWhichGoesOn)
{
    GuardedRun throwing, faulting;
    EXPECT_THROW(throwing.Run(&GuardedRun::Throw), int);
    EXPECT_EQ(1, throwing.handled);

    const GuardedBody inside = [](void* run) {
        static_cast<GuardedRun*>(run)->Run(&GuardedRun::Fault);
    };
    // Stands where an engine thread tells of faults, but lets the process go on.
    const GuardFilter outside = [](void* context, _EXCEPTION_POINTERS*) -> long {
        GuardedRun& run = *static_cast<GuardedRun*>(context);
        run.handledAtTheFault = run.handled;
        return GuardAccept;
    };
    EXPECT_FALSE(RunGuarded(inside, outside, &faulting));
    EXPECT_EQ(1, faulting.handledAtTheFault);
    EXPECT_EQ(1, faulting.handled);
}
