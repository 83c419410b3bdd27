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

void PrintOrders(bool cut, std::uint64_t run)
{
    const char* const which = !cut ? "all" : run < mostOrders ? "time up at" : "cut at";
    std::cout << std::setw(12) << which << std::setw(9) << run << std::flush;
}

} // namespace

Exploration::Exploration(double secondsEach)
    : secondsEach(secondsEach),
      shared(static_cast<decltype(shared)>(
          mmap(nullptr, sizeof *shared, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
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
    return RunAllOnce(scenario, 0) && RunAllOnce(scenario, 1) && RunAllOnce(scenario, 2);
}

bool Exploration::MayGoOn(unsigned preemptions, std::uint64_t run) const
{
    return preemptions <= alwaysAll || (run < mostOrders && !IsTimeUp());
}

bool Exploration::IsTimeUp() const
{
    return std::chrono::steady_clock::now() - begin > std::chrono::duration<double>(secondsEach);
}

bool Exploration::Run(const Scenario& scenario, Order& order)
{
    WrittenOrder written(order);
    const std::string failure = RunOnce(scenario.run, written);
    ++shared->orders;
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
    while (more && MayGoOn(preemptions, run)) {
        if (!Run(scenario, every))
            return false;
        ++run;
        more = every.Next();
    }
    PrintOrders(more, run);
    return true;
}

bool Exploration::RunAllOnce(const Scenario& scenario, unsigned preemptions)
{
    const std::uint64_t before = shared->orders;
    shared->cut = false;
    const auto mayBranch = [&] {
        const bool may = MayGoOn(preemptions, shared->orders - before);
        shared->cut = shared->cut || !may;
        return may;
    };
    const pid_t child = fork();
    if (child == 0) {
        EveryOrderOnce every(preemptions, mayBranch);
        std::_Exit(Run(scenario, every) && std::cout.flush() ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    if (status == 0)
        PrintOrders(shared->cut, shared->orders - before);
    return status == 0;
}

bool Exploration::RunRandom(const Scenario& scenario)
{
    std::uint64_t run = 0;
    for (; !IsTimeUp(); ++run) {
        RandomOrder random(shared->orders);
        if (!Run(scenario, random))
            return false;
    }
    std::cout << "  random" << std::setw(9) << run;
    return true;
}
