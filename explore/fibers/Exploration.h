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
    /// million, then random ones. The first that fails is printed as it can be told to the program,
    /// and ends it.
    void Explore(const Scenario& scenario);

    std::uint64_t Orders() const { return *orders; }
    unsigned Failures() const { return failures; }

private:
    bool ExploreOnce(const Scenario& scenario);
    bool ExploreOften(const Scenario& scenario);
    bool RunAll(const Scenario& scenario, unsigned preemptions);
    bool RunAllOnce(const Scenario& scenario, unsigned preemptions);
    bool RunRandom(const Scenario& scenario);
    bool Run(const Scenario& scenario, Order& order);
    bool IsTimeUp() const;

    double secondsEach;
    std::chrono::steady_clock::time_point begin;
    std::uint64_t* orders; ///< run so far, counted by all processes
    unsigned failures = 0;
};
