// varek-explore [SECONDS]             runs all scenarios in all orders, and random ones for the rest
//                                     of the time, a minute if not told otherwise
// varek-explore SCENARIO [ORDER]      runs one once, in that order, and tells its calls of the kernel

#include "explore/fibers/Exploration.h"
#include "explore/fibers/Orders.h"
#include "explore/fibers/Run.h"
#include "explore/scenarios/Scenario.h"

#include <cstdlib>
#include <cstring>
#include <iostream>

namespace
{

std::vector<Scenario> AllScenarios()
{
    std::vector<Scenario> all;
    for (const auto& some : {ProcessorScenarios(), SchedulerScenarios(), RecorderScenarios(),
                             ModuleScenarios()})
        all.insert(all.end(), some.begin(), some.end());
    return all;
}

int Replay(const Scenario& scenario, const std::string& order)
{
    ToldOrder first(""), told(order);
    if (!scenario.onceAProcess)
        RunOnce(scenario.run, first);
    const std::string failure =
        RunOnce(scenario.run, told, [](const std::string& call) { std::cout << call << "\n"; });
    std::cout << (failure.empty() ? "all holds" : failure) << std::endl;
    return failure.empty() ? 0 : 1;
}

int ExploreAll(double seconds)
{
    const std::vector<Scenario> all = AllScenarios();
    Exploration exploration(seconds / static_cast<double>(all.size()));
    for (const Scenario& scenario : all)
        exploration.Explore(scenario);
    std::cout << exploration.Orders() << " orders in all, " << exploration.Failures()
              << " scenarios failed" << std::endl;
    return exploration.Failures() == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string first = argc > 1 ? argv[1] : "60";
    for (const Scenario& scenario : AllScenarios())
        if (first == scenario.name)
            return Replay(scenario, argc > 2 ? argv[2] : "");
    const double seconds = std::atof(first.c_str());
    if (seconds > 0)
        return ExploreAll(seconds);
    std::cerr << "There is no scenario " << first << ". There are:\n";
    for (const Scenario& scenario : AllScenarios())
        std::cerr << "    " << scenario.name << "\n";
    return 2;
}
