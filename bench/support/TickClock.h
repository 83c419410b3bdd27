#pragma once

#include <cstdint>

#include <x86intrin.h>

/// The clock of the benchmarks: the processor's time stamp counter. Reading it costs a few
/// nanoseconds, and it goes on when a benchmark stops the performance counter.
class TickClock
{
public:
    static std::uint64_t Now() { return __rdtsc(); }

    /// Length of a tick, measured against the performance counter at start-up.
    static double Nanoseconds(std::uint64_t ticks);
};
