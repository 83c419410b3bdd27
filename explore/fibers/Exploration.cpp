#include "explore/fibers/Exploration.h"

#include "explore/fibers/Orders.h"
#include "explore/fibers/Run.h"

#include <iomanip>
#include <iostream>

namespace
{

const std::uint64_t mostOrders = 1000000; // with two preemptions
const unsigned alwaysAll = 1;             // preemptions whose orders are run however long it takes

} // namespace

void Exploration::Explore(const Scenario& scenario)
{
    std::cout << std::left << std::setw(32) << scenario.name << std::flush;
    ToldOrder first("");
    RunOnce(scenario.run, first); // names what is kept for good
    begin = std::chrono::steady_clock::now();
    const bool held = RunAll(scenario, 0) && RunAll(scenario, 1) && RunAll(scenario, 2) &&
                      RunRandom(scenario);
    failures += held ? 0 : 1;
    std::cout << std::endl;
}

bool Exploration::IsTimeUp() const
{
    return std::chrono::steady_clock::now() - begin > std::chrono::duration<double>(secondsEach);
}

bool Exploration::Run(const Scenario& scenario, Order& order)
{
    WrittenOrder written(order);
    ++orders;
    const std::string failure = RunOnce(scenario.run, written);
    if (!failure.empty())
        std::cout << " FAILED: " << failure << "\n  varek-explore " << scenario.name << " \""
                  << written.Text() << "\"";
    return failure.empty();
}

bool Exploration::RunAll(const Scenario& scenario, unsigned preemptions)
{
    EveryOrder every(preemptions);
    std::uint64_t run = 0;
    bool more = true;
    while (more && (preemptions <= alwaysAll || (run < mostOrders && !IsTimeUp()))) {
        if (!Run(scenario, every))
            return false;
        ++run;
        more = every.Next();
    }
    std::cout << std::right << std::setw(9) << run << (more ? " of more" : " all") << std::flush;
    return true;
}

bool Exploration::RunRandom(const Scenario& scenario)
{
    std::uint64_t run = 0;
    for (; !IsTimeUp(); ++run) {
        RandomOrder random(orders);
        if (!Run(scenario, random))
            return false;
    }
    std::cout << std::setw(9) << run << " random";
    return true;
}
