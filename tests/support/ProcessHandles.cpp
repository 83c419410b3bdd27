#include "tests/support/ProcessHandles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include <windows.h>

#include <winternl.h>

namespace
{

std::vector<char> ReadProcessTable()
{
    std::vector<char> table(1 << 16);
    while (!NT_SUCCESS(NtQuerySystemInformation(SystemProcessInformation, table.data(),
                                                static_cast<ULONG>(table.size()), nullptr)))
        table.resize(table.size() * 2);
    return table;
}

} // namespace

// GetProcessHandleCount answers 0 in some places where tests run; the system's list of processes is
// right everywhere.
std::size_t CountHandles()
{
    const std::vector<char> table = ReadProcessTable();
    const char* at = table.data();
    for (;;) {
        const SYSTEM_PROCESS_INFORMATION& process =
            *reinterpret_cast<const SYSTEM_PROCESS_INFORMATION*>(at);
        if (reinterpret_cast<std::uintptr_t>(process.UniqueProcessId) == GetCurrentProcessId())
            return process.HandleCount;
        if (process.NextEntryOffset == 0)
            return 0;
        at += process.NextEntryOffset;
    }
}

ExpectSameHandles::~ExpectSameHandles()
{
    EXPECT_EQ(before, CountHandles()) << "handles are open after the scenario";
}
