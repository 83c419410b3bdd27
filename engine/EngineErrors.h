#pragma once

#include "diagnostics/MFlowLocation.h"
#include "foundation/MException.h"

#include <cstdint>

// How the engine raises its failures. Object and line of `location` are set by the caller:
//
//     RaiseError(location.SetObject(this).SetLine(__LINE__), L"AlreadyRunning");

/// Raises `literal` without parameters.
[[noreturn]] void RaiseError(MFlowLocation& location, const wchar_t* literal);

/// Raises `literal` with the parameter "winErrorCode", the calling thread's last error.
[[noreturn]] void RaiseWindowsError(MFlowLocation& location, const wchar_t* literal);

/// Raises what a wait on `handleCount` handles came back with when it was none of them: "Abandoned"
/// or "Unexpected" with the parameter "status", or "WaitFailed" with "winErrorCode".
[[noreturn]] void RaiseWaitFailure(MFlowLocation& location, std::uint32_t status,
                                   std::uint32_t handleCount);

/// Calls `call()` and dismisses at `location` what it raises; a failure that is no `MException`,
/// such as the want of memory to tell one, leaves a mark there.
template <class Call>
void DismissFailureOf(Call call, MFlowLocation& location)
{
    try {
        call();
    } catch (MException& exception) {
        location.DismissError(exception);
    } catch (...) {
        location.LogTimingPoint();
    }
}
