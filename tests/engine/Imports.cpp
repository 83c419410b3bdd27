#include "tests/engine/Imports.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>

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
    return planned == GetCurrentThreadId() && plan.import == import;
}

void DoAhead(Import import)
{
    if (Meets(import) && plan.ahead) {
        planned = 0;
        (*plan.ahead)();
    }
}

/// Whether this call is to be answered wrong, the last error set for it.
bool Lies(Import import)
{
    if (!Meets(import) || plan.ahead)
        return false;
    planned = 0;
    errno = static_cast<int>(plan.answer);
    SetLastError(plan.answer);
    return true;
}

template <class Function>
Function* Real(Import import)
{
    const char* const names[] = {"WaitForMultipleObjects",
                                 "WaitForSingleObject",
                                 "_beginthreadex",
                                 "CreateEventW",
                                 "SetEvent",
                                 "ResetEvent",
                                 "CloseHandle"};
    const wchar_t* const library = import == Import::BeginThread ? L"msvcrt" : L"kernel32";
    const auto name = names[static_cast<int>(import)];
    const auto address = GetProcAddress(GetModuleHandleW(library), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
}

template <Import import, class... Arguments>
DWORD Wait(Arguments... arguments)
{
    static const auto real = Real<DWORD(Arguments...)>(import);
    DoAhead(import);
    const DWORD answer = real(arguments...);
    return Lies(import) ? plan.answer : answer;
}

template <Import import, class Result, class... Arguments>
Result Make(Arguments... arguments)
{
    static const auto real = Real<Result(Arguments...)>(import);
    DoAhead(import);
    return Lies(import) ? Result() : real(arguments...);
}

// Whoever closes what is another's by now takes it from him, and his own closing fails.
BOOL Close(HANDLE handle)
{
    static const auto real = Real<BOOL(HANDLE)>(Import::CloseHandle);
    const BOOL closed = real(handle);
    EXPECT_TRUE(closed) << "a handle that is not open was closed";
    return closed;
}

} // namespace

extern "C" {
decltype(&WaitForMultipleObjects) __imp_WaitForMultipleObjects =
    Wait<Import::WaitForMultipleObjects>;
decltype(&WaitForSingleObject) __imp_WaitForSingleObject = Wait<Import::WaitForSingleObject>;
decltype(&_beginthreadex) __imp__beginthreadex = Make<Import::BeginThread>;
decltype(&CreateEventW) __imp_CreateEventW = Make<Import::CreateEvent>;
decltype(&SetEvent) __imp_SetEvent = Make<Import::SetEvent>;
decltype(&ResetEvent) __imp_ResetEvent = Make<Import::ResetEvent>;
decltype(&CloseHandle) __imp_CloseHandle = Close;
}

void AnswerNext(Import import, DWORD answer)
{
    Adopt({import, nullptr, answer});
}

void DoAheadOfNext(Import import, const Action& action)
{
    Adopt({import, &action, 0});
}
