#include "soak/Holdings.h"

#include "varek/OpenHandles.h"

#include <cstdint>

#include <windows.h>

#include <tlhelp32.h>

namespace
{

double BytesIn(HANDLE heap)
{
    double bytes = 0;
    PROCESS_HEAP_ENTRY entry = {};
    HeapLock(heap);
    while (HeapWalk(heap, &entry))
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
            bytes += entry.cbData;
    HeapUnlock(heap);
    return bytes;
}

double HeapBytes()
{
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    double bytes = 0;
    for (DWORD i = 0; i < count && i < 64; ++i)
        bytes += BytesIn(heaps[i]);
    return bytes;
}

double PrivateBytes()
{
    double bytes = 0;
    MEMORY_BASIC_INFORMATION region;
    char* address = nullptr;
    while (VirtualQuery(address, &region, sizeof region) != 0) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
            bytes += static_cast<double>(region.RegionSize);
        address = static_cast<char*>(region.BaseAddress) + region.RegionSize;
    }
    return bytes;
}

double Threads()
{
    double threads = 0;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 thread = {};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(snapshot, &thread); more; more = Thread32Next(snapshot, &thread))
        threads += thread.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return threads;
}

double Seconds(const FILETIME& time)
{
    return static_cast<double>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime) / 1e7;
}

} // namespace

Holdings CountHoldings()
{
    return {HeapBytes(), PrivateBytes(), static_cast<double>(varek::CountOpenHandles()), Threads()};
}

double SecondsOfComputing()
{
    FILETIME begin, end, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &begin, &end, &kernel, &user);
    return Seconds(kernel) + Seconds(user);
}
