// The structured exceptions of Windows, as far as the guards need them: a fault asks the guards
// from the inside out where it happens, and goes on at the one that accepts. C++ exceptions, which
// are none of the system's here, ask each guard as they pass it.

#include "diagnostics/StructuredGuard.h"

#include "explore/kernel/Faults.h"
#include "explore/kernel/Turn.h"

#include <csetjmp>
#include <csignal>
#include <cstdlib>

#include <windows.h>

namespace
{

const DWORD cppException = 0x20474343;

} // namespace

struct Guard {
    GuardFilter filter;
    void* context;
    Guard* outer;
    sigjmp_buf leave;

    bool Accepts(DWORD code) const
    {
        EXCEPTION_RECORD record = {code};
        _EXCEPTION_POINTERS pointers = {&record};
        return filter(context, &pointers) == GuardAccept;
    }
};

namespace
{

/// Keeps a guard in the thread's list for the length of the block.
struct Guarded {
    explicit Guarded(Guard& guard) : outer(guard.outer) { CurrentThread().guards = &guard; }
    ~Guarded() { CurrentThread().guards = outer; }

    Guard* outer;
};

void RaiseFault(int)
{
    RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
}

} // namespace

void RaiseOnFaults()
{
    struct sigaction action = {};
    action.sa_handler = RaiseFault;
    action.sa_flags = SA_NODEFER;
    sigaction(SIGSEGV, &action, nullptr);
}

bool RunGuarded(GuardedBody body, GuardFilter filter, void* context)
{
    Guard guard = {filter, context, CurrentThread().guards, {}};
    if (sigsetjmp(guard.leave, 0) != 0)
        return false;
    try {
        const Guarded guarded(guard);
        body(context);
        return true;
    } catch (...) {
        if (guard.Accepts(cppException))
            return false;
        throw;
    }
}

void RaiseException(DWORD code, DWORD, DWORD, const void*)
{
    for (Guard* guard = CurrentThread().guards; guard; guard = guard->outer)
        if (guard->Accepts(code)) {
            CurrentThread().guards = guard->outer;
            siglongjmp(guard->leave, 1);
        }
    std::abort();
}
