// varek-explore [SECONDS]
//     runs all scenarios in all orders, and in random ones for the rest of the time, a minute
// varek-explore --scenario SCENARIO [SECONDS]
//     explores one
// varek-explore SCENARIO [ORDER]
//     runs one once, in that order, and tells its calls of the kernel

#include "explore/fibers/Exploration.h"
#include "explore/fibers/Orders.h"
#include "explore/fibers/Run.h"
#include "explore/scenarios/Scenario.h"

#include <cstdlib>
#include <iostream>

namespace
{

// Those that do everything for the first time stand in front, while nothing has been done.
std::vector<Scenario> AllScenarios()
{
    std::vector<Scenario> all;
    for (const auto& some :
         {ModuleScenarios(), ProcessorScenarios(), SchedulerScenarios(), RecorderScenarios()})
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

int ExploreAll(const std::vector<Scenario>& all, double seconds)
{
    Exploration exploration(seconds / static_cast<double>(all.size()));
    for (const Scenario& scenario : all)
        exploration.Explore(scenario);
    std::cout << exploration.Orders() << " orders in all, " << exploration.Failures()
              << " scenarios failed" << std::endl;
    return exploration.Failures() == 0 ? 0 : 1;
}

double Seconds(const std::string& word)
{
    return word.empty() ? 60 : std::atof(word.c_str());
}

int ListScenarios()
{
    std::cerr << "A number of seconds, or one of the scenarios:\n";
    for (const Scenario& scenario : AllScenarios())
        std::cerr << "    " << scenario.name << "\n";
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> words(argv + 1, argv + argc);
    const bool one = !words.empty() && words[0] == "--scenario";
    words.erase(words.begin(), words.begin() + one);
    words.resize(2);
    for (const Scenario& scenario : AllScenarios())
        if (words[0] == scenario.name)
            return one ? ExploreAll({scenario}, Seconds(words[1])) : Replay(scenario, words[1]);
    if (!one && Seconds(words[0]) > 0)
        return ExploreAll(AllScenarios(), Seconds(words[0]));
    return ListScenarios();
}
