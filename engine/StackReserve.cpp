#include "engine/StackReserve.h"

#include <windows.h>

namespace
{

const ULONG reserve = 64 * 1024;
const ULONG pageSize = 4096;

/// The pages of the stack that `address` lies in.
MEMORY_BASIC_INFORMATION Query(const void* address)
{
    MEMORY_BASIC_INFORMATION region = {};
    VirtualQuery(address, &region, sizeof(region));
    return region;
}

} // namespace

// Where a stack grows page by page its guard page comes down to the reserve by itself. A stack that
// is there as a whole from the start has it at the very end, below the reserve, and overflows too
// late: there it is put where the reserve begins.
void ReserveStackForFailures()
{
    ULONG size = reserve;
    if (!SetThreadStackGuarantee(&size))
        return;
    char* const end = static_cast<char*>(Query(&size).AllocationBase);
    if ((Query(end + pageSize).Protect & PAGE_GUARD) == 0)
        return;
    DWORD before = 0;
    VirtualProtect(end + reserve, pageSize, PAGE_READWRITE | PAGE_GUARD, &before);
}
