#include "explore/fibers/Exploration.h"

#include "explore/fibers/Orders.h"
#include "explore/fibers/Run.h"

#include <cstdlib>
#include <iomanip>
#include <iostream>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

const std::uint64_t mostOrders = 1000000; // with two preemptions
const unsigned alwaysAll = 1;             // preemptions whose orders are run however long it takes

} // namespace

Exploration::Exploration(double secondsEach)
    : secondsEach(secondsEach),
      orders(static_cast<std::uint64_t*>(
          mmap(nullptr, sizeof *orders, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
{
}

void Exploration::Explore(const Scenario& scenario)
{
    std::cout << std::left << std::setw(32) << scenario.name << std::right << std::flush;
    begin = std::chrono::steady_clock::now();
    const bool held = scenario.onceAProcess ? ExploreOnce(scenario) : ExploreOften(scenario);
    failures += held ? 0 : 1;
    std::cout << std::endl;
}

bool Exploration::ExploreOften(const Scenario& scenario)
{
    ToldOrder first("");
    RunOnce(scenario.run, first); // names what is kept for good
    return RunAll(scenario, 0) && RunAll(scenario, 1) && RunAll(scenario, 2) && RunRandom(scenario);
}

bool Exploration::ExploreOnce(const Scenario& scenario)
{
    return RunAllOnce(scenario, 0) && RunAllOnce(scenario, 1);
}

bool Exploration::IsTimeUp() const
{
    return std::chrono::steady_clock::now() - begin > std::chrono::duration<double>(secondsEach);
}

bool Exploration::Run(const Scenario& scenario, Order& order)
{
    WrittenOrder written(order);
    const std::string failure = RunOnce(scenario.run, written);
    ++*orders;
    if (!failure.empty())
        std::cout << " FAILED: " << failure << "\n  varek-explore " << scenario.name << " \""
                  << written.Text() << "\"" << std::flush;
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

bool Exploration::RunAllOnce(const Scenario& scenario, unsigned preemptions)
{
    const std::uint64_t before = *orders;
    const pid_t child = fork();
    if (child == 0) {
        EveryOrderOnce every(preemptions);
        std::_Exit(Run(scenario, every) && std::cout.flush() ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    if (status == 0)
        std::cout << std::setw(9) << *orders - before << " all" << std::flush;
    return status == 0;
}

bool Exploration::RunRandom(const Scenario& scenario)
{
    std::uint64_t run = 0;
    for (; !IsTimeUp(); ++run) {
        RandomOrder random(*orders);
        if (!Run(scenario, random))
            return false;
    }
    std::cout << std::setw(9) << run << " random";
    return true;
}
