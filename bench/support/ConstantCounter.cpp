#include "bench/support/ConstantCounter.h"

#include <windows.h>

namespace
{

typedef BOOL(WINAPI* Counter)(LARGE_INTEGER* ticks);

Counter FindSystemCounter()
{
    const FARPROC found =
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "QueryPerformanceCounter");
    return reinterpret_cast<Counter>(reinterpret_cast<void*>(found));
}

BOOL WINAPI ReadConstant(LARGE_INTEGER* ticks)
{
    ticks->QuadPart = 1;
    return TRUE;
}

BOOL WINAPI ReadFirst(LARGE_INTEGER* ticks);

} // namespace

// The address through which every call of this executable goes, otherwise filled by the loader. It
// works before any constructor has run, since the log reads the counter at start-up.
extern "C" {
extern Counter __imp_QueryPerformanceCounter;
Counter __imp_QueryPerformanceCounter = ReadFirst;
}

namespace
{

BOOL WINAPI ReadFirst(LARGE_INTEGER* ticks)
{
    __imp_QueryPerformanceCounter = FindSystemCounter();
    return __imp_QueryPerformanceCounter(ticks);
}

} // namespace

ConstantCounter::ConstantCounter()
{
    __imp_QueryPerformanceCounter = ReadConstant;
}

ConstantCounter::~ConstantCounter()
{
    __imp_QueryPerformanceCounter = FindSystemCounter();
}
