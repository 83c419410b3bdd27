#pragma once

#include "explore/scenarios/Scenario.h"

#include <chrono>
#include <cstdint>

class Order;

/// Runs scenarios in one order after the other, and prints what comes of it.
class Exploration
{
public:
    /// Stops looking after so long at a scenario, its orders without and with one preemption aside.
    explicit Exploration(double secondsEach);

    /// Runs all orders without a preemption, with one, with two where they are fewer than a
    /// million, then random ones, and prints of each how many and whether these are all, or whether
    /// the million or the time was up. The first that fails is printed as it can be told to the
    /// program, and ends it.
    void Explore(const Scenario& scenario);

    std::uint64_t Orders() const { return shared->orders; }
    unsigned Failures() const { return failures; }

private:
    bool ExploreOnce(const Scenario& scenario);
    bool ExploreOften(const Scenario& scenario);
    bool RunAll(const Scenario& scenario, unsigned preemptions);
    bool RunAllOnce(const Scenario& scenario, unsigned preemptions);
    bool RunRandom(const Scenario& scenario);
    bool Run(const Scenario& scenario, Order& order);
    bool MayGoOn(unsigned preemptions, std::uint64_t run) const;
    bool IsTimeUp() const;

    double secondsEach;
    std::chrono::steady_clock::time_point begin;
    struct {
        std::uint64_t orders; ///< run so far
        bool cut;             ///< there were more
    } * shared;               ///< by all processes
    unsigned failures = 0;
};
