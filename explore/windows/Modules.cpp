// What is asked for by name. Tests that have import slots of their own bring these calls, too.

#include "explore/kernel/Handles.h"

#include <winternl.h>

HMODULE GetModuleHandleW(const wchar_t*)
{
    return nullptr;
}

void* GetProcAddress(HMODULE, const char*)
{
    return reinterpret_cast<void*>(NtQuerySystemInformation);
}

NTSTATUS NtQuerySystemInformation(int, void* buffer, ULONG size, ULONG*)
{
    const Turn turn("NtQuerySystemInformation");
    SYSTEM_HANDLE_INFORMATION& table = *static_cast<SYSTEM_HANDLE_INFORMATION*>(buffer);
    table.Count = static_cast<ULONG>(CountHandles());
    if (sizeof table + table.Count * sizeof table.Handle > size)
        return -1;
    for (ULONG i = 0; i < table.Count; ++i)
        table.Handle[i].OwnerPid = GetCurrentProcessId();
    return 0;
}
