#include "tests/support/SystemFunction.h"

#include <initializer_list>

#include <windows.h>

#include <winternl.h>

// GetProcAddress can have a slot itself.
extern "C" NTSTATUS NTAPI LdrGetProcedureAddress(HMODULE library, ANSI_STRING* name, ULONG ordinal,
                                                 void** address);

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
