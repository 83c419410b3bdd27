#pragma once

#include "tests/support/ExpectNoMoreHandles.h"
#include "tests/support/SystemFunction.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>

#include <windows.h>

// A test executable can bring import slots of its own for functions of the system, through which
// go the calls of all that is linked into it, and make each of these calls fail in turn. A slot is
// an object like this one, where FALSE is what the call answers when it fails:
//
//     const char writeFile[] = "WriteFile";
//     extern "C" decltype(&WriteFile) __imp_WriteFile = CallOrFail<writeFile, FALSE>;
//
// What its header does not declare as imported has no slot, and is defined as a function instead.

/// What failed calls leave behind as the last error.
const DWORD failedCallError = 50; // ERROR_NOT_SUPPORTED

/// Makes the `nth` call of the calling thread through any slot fail, 1 being the next.
void ArmFailingCall(int nth);

/// Lets all further calls through. The function whose call has failed; empty when none has.
std::string DisarmFailingCall();

/// Makes the next call of `name` by the calling thread fail, with `error` for last error and
/// `errno`. One plan of either kind at a time in the process.
void FailNext(const char* name, DWORD error);

/// Has `action` done ahead of that call. Not owned.
void DoAheadOfNext(const char* name, const std::function<void()>& action);

/// Whether this call, through the slot of `name`, is the one to fail.
bool IsCallToFail(const char* name);

/// The system's own function, looked up once: the look-up waits for whoever loads a library.
template <const char* name>
void* SystemFunction()
{
    static std::atomic<void*> function;
    if (!function)
        function = FindSystemFunction(name);
    return function;
}

/// A call that answers `refusal` if it is to fail, and what the system's own function answers
/// otherwise.
template <const char* name, std::intptr_t refusal, class Result, class... Arguments>
Result CallOrFail(Arguments... arguments)
{
    const auto function = reinterpret_cast<Result (*)(Arguments...)>(SystemFunction<name>());
    return IsCallToFail(name) ? Result(refusal) : function(arguments...);
}

/// A wait that is made, and answers its error as well if it is to fail.
template <const char* name, class... Arguments>
DWORD WaitAndFail(Arguments... arguments)
{
    const auto function = reinterpret_cast<DWORD (*)(Arguments...)>(SystemFunction<name>());
    const bool fails = IsCallToFail(name);
    const DWORD error = GetLastError(), answer = function(arguments...);
    SetLastError(fails ? error : GetLastError());
    return fails ? error : answer;
}

/// Runs `operation` as a whole, and then with its first, second, third ... call failing until it
/// makes no more. After each run that met the failure `check` is told the name of the function and
/// what the operation has returned, and no handle may be open that was not before.
template <class Operation, class Check>
void ForEachFailingCall(Operation operation, Check check)
{
    operation(); // what is made at the first use is kept
    for (int nth = 1; nth < 1000; ++nth) {
        const ExpectNoMoreHandles handles;
        ArmFailingCall(nth);
        const auto outcome = operation();
        const std::string failed = DisarmFailingCall();
        if (failed.empty())
            return;
        SCOPED_TRACE(failed + " failed, call " + std::to_string(nth));
        check(failed, outcome);
    }
    ADD_FAILURE() << "the operation never completes";
}
