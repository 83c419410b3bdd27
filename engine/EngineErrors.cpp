#include "engine/EngineErrors.h"

#include <windows.h>

namespace
{

[[noreturn]] void RaiseNumber(MFlowLocation& location, const wchar_t* literal,
                              const wchar_t* parameter, std::uint32_t value)
{
    MError error;
    location.RaiseRootError(error, literal);
    error.AddParameter(parameter, value, false);
    location.Throw(error);
}

} // namespace

void RaiseError(MFlowLocation& location, const wchar_t* literal)
{
    MError error;
    location.RaiseRootError(error, literal);
    location.Throw(error);
}

void RaiseWindowsError(MFlowLocation& location, const wchar_t* literal)
{
    RaiseNumber(location, literal, L"winErrorCode", GetLastError());
}

void RaiseWaitFailure(MFlowLocation& location, std::uint32_t status, std::uint32_t handleCount)
{
    if (status == WAIT_FAILED)
        RaiseWindowsError(location, L"WaitFailed");
    const bool abandoned = status >= WAIT_ABANDONED_0 && status - WAIT_ABANDONED_0 < handleCount;
    RaiseNumber(location, abandoned ? L"Abandoned" : L"Unexpected", L"status", status);
}
