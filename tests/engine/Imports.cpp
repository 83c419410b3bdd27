#include "tests/engine/Imports.h"

#include <atomic>
#include <cerrno>
#include <cstdint>

#include <process.h>

namespace
{

struct Plan {
    Import import;
    const Action* ahead; ///< null to answer wrong
    DWORD answer;
};

// Written and read by the thread that it is for, which is none when its id is 0. A variable of each
// thread would call here itself.
std::atomic<DWORD> planned;
Plan plan;

void Adopt(const Plan& fresh)
{
    plan = fresh;
    planned = GetCurrentThreadId();
}

bool Meets(Import import)
{
    if (planned != GetCurrentThreadId() || plan.import != import)
        return false;
    planned = 0;
    return true;
}

/// Does what is to be done ahead of this call, if anything is.
void Ahead(Import import)
{
    if (plan.ahead && Meets(import))
        (*plan.ahead)();
}

/// Whether this call is to be answered wrong, the last error set for it.
bool Lies(Import import)
{
    if (plan.ahead || !Meets(import))
        return false;
    errno = static_cast<int>(plan.answer);
    SetLastError(plan.answer);
    return true;
}

template <class Function>
Function Real(const wchar_t* library, const char* name)
{
    const auto address = GetProcAddress(GetModuleHandleW(library), name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

DWORD WINAPI WaitForMany(DWORD count, const HANDLE* handles, BOOL all, DWORD timeout)
{
    static const auto real =
        Real<decltype(&WaitForMultipleObjects)>(L"kernel32", "WaitForMultipleObjects");
    Ahead(Import::WaitForMultipleObjects);
    const DWORD answer = real(count, handles, all, timeout);
    return Lies(Import::WaitForMultipleObjects) ? plan.answer : answer;
}

DWORD WINAPI WaitForOne(HANDLE handle, DWORD timeout)
{
    static const auto real =
        Real<decltype(&WaitForSingleObject)>(L"kernel32", "WaitForSingleObject");
    Ahead(Import::WaitForSingleObject);
    const DWORD answer = real(handle, timeout);
    return Lies(Import::WaitForSingleObject) ? plan.answer : answer;
}

std::uintptr_t __cdecl BeginThread(void* security, unsigned stack, _beginthreadex_proc_type entry,
                                   void* argument, unsigned flags, unsigned* id)
{
    static const auto real = Real<decltype(&_beginthreadex)>(L"msvcrt", "_beginthreadex");
    return Lies(Import::BeginThread) ? 0 : real(security, stack, entry, argument, flags, id);
}

HANDLE WINAPI MakeEvent(SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const wchar_t* name)
{
    static const auto real = Real<decltype(&CreateEventW)>(L"kernel32", "CreateEventW");
    Ahead(Import::CreateEvent);
    return Lies(Import::CreateEvent) ? nullptr : real(security, manual, set, name);
}

BOOL WINAPI Set(HANDLE event)
{
    static const auto real = Real<decltype(&SetEvent)>(L"kernel32", "SetEvent");
    Ahead(Import::SetEvent);
    return real(event);
}

BOOL WINAPI Reset(HANDLE event)
{
    static const auto real = Real<decltype(&ResetEvent)>(L"kernel32", "ResetEvent");
    Ahead(Import::ResetEvent);
    return real(event);
}

} // namespace

extern "C" {
decltype(&WaitForMultipleObjects) __imp_WaitForMultipleObjects = WaitForMany;
decltype(&WaitForSingleObject) __imp_WaitForSingleObject = WaitForOne;
decltype(&_beginthreadex) __imp__beginthreadex = BeginThread;
decltype(&CreateEventW) __imp_CreateEventW = MakeEvent;
decltype(&SetEvent) __imp_SetEvent = Set;
decltype(&ResetEvent) __imp_ResetEvent = Reset;
}

void AnswerNext(Import import, DWORD answer)
{
    Adopt({import, nullptr, answer});
}

void DoAheadOfNext(Import import, const Action& action)
{
    Adopt({import, &action, 0});
}
