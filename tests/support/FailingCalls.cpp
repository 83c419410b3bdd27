#include "tests/support/FailingCalls.h"

#include <atomic>
#include <cerrno>
#include <cstring>

namespace
{

struct Plan {
    const char* name;                   ///< of the function; null for any
    int left;                           ///< calls until the one that is meant
    const std::function<void()>* ahead; ///< null to fail
    DWORD error;
};

// Written and read by the thread that it is for, which is none when its id is 0. A variable of each
// thread would call here itself.
std::atomic<DWORD> planned;
Plan plan;
const char* failed;

void Adopt(const Plan& fresh)
{
    plan = fresh;
    failed = "";
    planned = GetCurrentThreadId();
}

} // namespace

void ArmFailingCall(int nth)
{
    Adopt({nullptr, nth, nullptr, failedCallError});
}

std::string DisarmFailingCall()
{
    planned = 0;
    return failed;
}

void FailNext(const char* name, DWORD error)
{
    Adopt({name, 1, nullptr, error});
}

void DoAheadOfNext(const char* name, const std::function<void()>& action)
{
    Adopt({name, 1, &action, 0});
}

bool IsCallToFail(const char* name)
{
    if (planned != GetCurrentThreadId() || (plan.name && std::strcmp(plan.name, name) != 0) ||
        --plan.left > 0)
        return false;
    planned = 0;
    if (plan.ahead) {
        (*plan.ahead)();
        return false;
    }
    failed = name;
    errno = static_cast<int>(plan.error);
    SetLastError(plan.error);
    return true;
}
