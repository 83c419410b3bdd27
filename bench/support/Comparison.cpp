#include "bench/support/Comparison.h"

#include "bench/support/Report.h"
#include "bench/support/Sample.h"
#include "bench/support/TickClock.h"

#include <utility>

namespace
{

const double secondsPerComparison = 1.5;
const std::size_t fewestRounds = 21;
const unsigned warmUpRounds = 3;

} // namespace

Comparison::Comparison(const char* what, unsigned times, Work ours, Work other)
    : what(what), times(times), ours(std::move(ours)), other(std::move(other)), preparation([] {})
{
}

Comparison& Comparison::Before(std::function<void()> newPreparation)
{
    preparation = std::move(newPreparation);
    return *this;
}

void Comparison::AtMost(double bar)
{
    for (unsigned i = 0; i < warmUpRounds; ++i) {
        Measure(ours);
        Measure(other);
    }

    Sample ourTimes;
    Sample otherTimes;
    Sample ratios;
    const std::uint64_t begin = TickClock::Now();
    while (ratios.Count() < fewestRounds ||
           TickClock::Nanoseconds(TickClock::Now() - begin) < secondsPerComparison * 1e9) {
        // Either goes first in every other round.
        const bool oursFirst = ratios.Count() % 2 == 0;
        const double first = Measure(oursFirst ? ours : other);
        const double second = Measure(oursFirst ? other : ours);
        const double ourTime = oursFirst ? first : second;
        const double otherTime = oursFirst ? second : first;
        ourTimes.Add(ourTime);
        otherTimes.Add(otherTime);
        ratios.Add(ourTime / otherTime);
    }
    Report::Ratio(what, ourTimes, otherTimes, ratios, bar);
}

/// Nanoseconds an operation.
double Comparison::Measure(const Work& work) const
{
    preparation();
    const std::uint64_t begin = TickClock::Now();
    work(times);
    return TickClock::Nanoseconds(TickClock::Now() - begin) / times;
}
