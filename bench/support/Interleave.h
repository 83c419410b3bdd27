#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <vector>

/// Seconds that one call takes.
inline double Seconds(const std::function<void()>& work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Median and spread of a measurement that was repeated.
struct Spread {
    double median;
    double low;
    double high;

    explicit Spread(std::vector<double> values)
    {
        std::sort(values.begin(), values.end());
        median = values[values.size() / 2];
        low = values.front();
        high = values.back();
    }
};

/// Two pieces of work timed in turn, so that what else the machine does hits both alike.
struct Comparison {
    Spread ours;
    Spread peer;
    /// Peer's time over ours, round by round: above 1 we are faster.
    Spread ratio;
};

inline Comparison Interleave(int rounds, const std::function<void()>& ours,
                             const std::function<void()>& peer)
{
    std::vector<double> mine, theirs, ratios;
    ours();
    peer();
    for (int round = 0; round < rounds; ++round) {
        const bool first = round % 2 == 0;
        const double early = Seconds(first ? ours : peer);
        const double late = Seconds(first ? peer : ours);
        mine.push_back(first ? early : late);
        theirs.push_back(first ? late : early);
        ratios.push_back(theirs.back() / mine.back());
    }
    return {Spread(mine), Spread(theirs), Spread(ratios)};
}
