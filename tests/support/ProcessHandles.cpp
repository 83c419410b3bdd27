#include "tests/support/ProcessHandles.h"

#include <gtest/gtest.h>

#include <cstdint>

#include <windows.h>

#include <winternl.h>

namespace
{

// GetProcessHandleCount, and the count in the system's list of processes, say nothing in some
// places where tests run; the list of all handles of the system is right everywhere.
const auto systemHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(16);

struct HandleTable {
    ULONG count;
    struct Entry {
        ULONG processId;
        UCHAR type;
        UCHAR flags;
        USHORT handle;
        void* object;
        ULONG access;
    } entries[1];
};

std::vector<char> ReadHandleTable()
{
    std::vector<char> table(1 << 16);
    while (!NT_SUCCESS(NtQuerySystemInformation(systemHandleInformation, table.data(),
                                                static_cast<ULONG>(table.size()), nullptr)))
        table.resize(table.size() * 2);
    return table;
}

} // namespace

std::vector<void*> ListHandles()
{
    const std::vector<char> buffer = ReadHandleTable();
    const HandleTable& table = *reinterpret_cast<const HandleTable*>(buffer.data());
    std::vector<void*> handles;
    for (ULONG i = 0; i < table.count; ++i)
        if (table.entries[i].processId == GetCurrentProcessId())
            handles.push_back(
                reinterpret_cast<void*>(static_cast<std::uintptr_t>(table.entries[i].handle)));
    return handles;
}

ExpectSameHandles::~ExpectSameHandles()
{
    EXPECT_EQ(before, ListHandles().size()) << "handles are open after the scenario";
}
