#include "tests/support/FailingCalls.h"

#include <atomic>

#include <winternl.h>

// GetProcAddress can have a slot itself.
extern "C" NTSTATUS NTAPI LdrGetProcedureAddress(HMODULE library, ANSI_STRING* name, ULONG ordinal,
                                                 void** address);

namespace
{

// Written and read by the armed thread, which is none when its id is 0.
std::atomic<DWORD> armedThread;
int callsLeft;
const char* failed;

} // namespace

void ArmFailingCall(int nth)
{
    callsLeft = nth;
    failed = "";
    armedThread = GetCurrentThreadId();
}

std::string DisarmFailingCall()
{
    armedThread = 0;
    return failed;
}

bool IsCallToFail(const char* name)
{
    if (armedThread != GetCurrentThreadId() || --callsLeft != 0)
        return false;
    failed = name;
    SetLastError(failedCallError);
    return true;
}

void* FindSystemFunction(const char* name)
{
    ANSI_STRING text;
    RtlInitAnsiString(&text, name);
    void* address = nullptr;
    for (const wchar_t* const library : {L"kernel32", L"msvcrt"})
        if (!address)
            LdrGetProcedureAddress(GetModuleHandleW(library), &text, 0, &address);
    return address;
}
