#pragma once

class MCallbackFunctor;

/// Runs `body`, and `onFailure` exactly once if the body is left by any failure, an `MException`,
/// another C++ exception or a machine fault; the failure then goes on.
///
/// After a machine fault `onFailure` runs at the point of the fault, before the stack is unwound,
/// so that whoever is told of the fault further out still sees its own context. It must not raise.
void RunWithFailureHandler(MCallbackFunctor& body, MCallbackFunctor& onFailure);
