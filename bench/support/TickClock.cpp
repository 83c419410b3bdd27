#include "bench/support/TickClock.h"

#include <windows.h>

namespace
{

std::int64_t ReadCounter()
{
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
}

double MeasureTick()
{
    LARGE_INTEGER perSecond;
    QueryPerformanceFrequency(&perSecond);

    const std::int64_t begin = ReadCounter();
    const std::uint64_t firstTick = TickClock::Now();
    Sleep(100);
    const std::int64_t end = ReadCounter();
    const std::uint64_t lastTick = TickClock::Now();

    const double seconds =
        static_cast<double>(end - begin) / static_cast<double>(perSecond.QuadPart);
    return seconds * 1e9 / static_cast<double>(lastTick - firstTick);
}

const double nanosecondsPerTick = MeasureTick();

} // namespace

double TickClock::Nanoseconds(std::uint64_t ticks)
{
    return static_cast<double>(ticks) * nanosecondsPerTick;
}
