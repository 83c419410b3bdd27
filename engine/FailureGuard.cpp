#include "engine/FailureGuard.h"

#include "engine/MCallbackFunctor.h"

namespace
{

struct GuardedRun {
    void Fail()
    {
        if (failed)
            return;
        failed = true;
        RunContained([this] { onFailure.Invoke(); });
    }

    MCallbackFunctor& body;
    MCallbackFunctor& onFailure;
    bool failed;
};

// The compiler's own exceptions are caught here, where unwinding is theirs ...
void RunBody(void* context)
{
    GuardedRun& run = *static_cast<GuardedRun*>(context);
    try {
        run.body.Invoke();
    } catch (...) {
        run.Fail();
        throw;
    }
}

// ... and here everything that `catch (...)` does not see. What `RunBody` lets go on passes by as
// well.
long ObserveFault(void* context, _EXCEPTION_POINTERS*)
{
    static_cast<GuardedRun*>(context)->Fail();
    return GuardContinueSearch;
}

} // namespace

void RunWithFailureHandler(MCallbackFunctor& body, MCallbackFunctor& onFailure)
{
    GuardedRun run = {body, onFailure, false};
    RunGuarded(RunBody, ObserveFault, &run);
}

long AcceptFault(void*, _EXCEPTION_POINTERS*)
{
    return GuardAccept;
}
