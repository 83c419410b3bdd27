#include "engine/FailureGuard.h"

#include "diagnostics/StructuredGuard.h"
#include "engine/MCallbackFunctor.h"

namespace
{

struct GuardedRun {
    MCallbackFunctor& body;
    MCallbackFunctor& onFailure;
};

// C++ exceptions are caught here, where unwinding is theirs ...
void RunBody(void* context)
{
    GuardedRun& run = *static_cast<GuardedRun*>(context);
    try {
        run.body.Invoke();
    } catch (...) {
        run.onFailure.Invoke();
        throw;
    }
}

// ... and faults here, which `catch (...)` does not see on every compiler. The exception that
// `RunBody` lets go on passes by as well, its handler already run.
long ObserveFault(void* context, _EXCEPTION_POINTERS* pointers)
{
    if (!IsCppException(pointers))
        static_cast<GuardedRun*>(context)->onFailure.Invoke();
    return GuardContinueSearch;
}

} // namespace

void RunWithFailureHandler(MCallbackFunctor& body, MCallbackFunctor& onFailure)
{
    GuardedRun run = {body, onFailure};
    RunGuarded(RunBody, ObserveFault, &run);
}
