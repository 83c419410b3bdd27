#include "tests/support/ProcessHandles.h"

#include <cstdint>
#include <vector>

#include <windows.h>

#include <winternl.h>

// GetProcessHandleCount, and the count in the system's list of processes, say nothing in some
// places where tests run; the list of all handles of the system is right everywhere.
std::set<void*> ListHandles()
{
    std::vector<char> buffer(1 << 16);
    while (!NT_SUCCESS(NtQuerySystemInformation(SystemHandleInformation, buffer.data(),
                                                static_cast<ULONG>(buffer.size()), nullptr)))
        buffer.resize(buffer.size() * 2);

    const auto& table = *reinterpret_cast<const SYSTEM_HANDLE_INFORMATION*>(buffer.data());
    std::set<void*> handles;
    for (ULONG i = 0; i < table.Count; ++i)
        if (table.Handle[i].OwnerPid == GetCurrentProcessId())
            handles.insert(
                reinterpret_cast<void*>(static_cast<std::uintptr_t>(table.Handle[i].HandleValue)));
    return handles;
}
