#pragma once

struct _EXCEPTION_POINTERS;

/// Answers of a filter to a structured exception.
enum GuardAnswer : long {
    GuardContinueSearch = 0, ///< not ours: the exception goes on to the guards and handlers outside
    GuardAccept = 1          ///< ours: the guarded call ends here and answers false
};

/// What runs under a guard.
typedef void (*GuardedBody)(void* context);

/// What a guard asks about an exception; answers one of `GuardAnswer`.
typedef long (*GuardFilter)(void* context, _EXCEPTION_POINTERS* pointers);

/// Calls `body(context)` under a structured exception guard.
///
/// `filter(context, pointers)` is asked, at the point of the fault and with the stack of the fault
/// intact, about every exception that nothing inside `body` has handled: machine faults, and also
/// C++ exceptions on their way out. It answers one of `GuardAnswer`.
///
/// True when `body` returned, false when the filter accepted. C++ exceptions that the filter does
/// not accept pass through to the caller. After an accepted fault, destructors of what `body` had
/// on the stack do not run on every compiler: let it hold nothing that must be released.
bool RunGuarded(GuardedBody body, GuardFilter filter, void* context);
