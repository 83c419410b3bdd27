#pragma once

#include "diagnostics/StructuredGuard.h"

class MCallbackFunctor;

/// Runs `body`, and `onFailure` exactly once if the body is left by any failure, an `MException`,
/// another C++ exception or a machine fault; the failure then goes on.
///
/// After a machine fault, or an exception of another compiler's run time, `onFailure` runs at the
/// point of the fault, before the stack is unwound, so that whoever is told of the fault further
/// out still sees its own context. It runs contained: a second failure in it ends it, and the first
/// one goes on.
void RunWithFailureHandler(MCallbackFunctor& body, MCallbackFunctor& onFailure);

/// A `GuardFilter` that accepts everything.
long AcceptFault(void* context, _EXCEPTION_POINTERS* pointers);

/// Calls `body()` and lets nothing out, neither an exception nor a machine fault. After a fault the
/// destructors of what the body had on the stack do not run. For work on behalf of a failure that
/// has happened already.
template <class Body>
void RunContained(Body body)
{
    const GuardedBody run = [](void* context) {
        try {
            (*static_cast<Body*>(context))();
        } catch (...) {
        }
    };
    RunGuarded(run, AcceptFault, &body);
}
