// What may meet in the life of a module. Each is run in a process of its own, which does it all for
// the first time.

#include "explore/scenarios/Parts.h"
#include "module/ModuleCommandProcessor.h"
#include "module/Runtime.h"

namespace
{

void TwoThreadsMakeTheFirst()
{
    MayLoseBlocks(); // names are kept for good
    const auto make = [] { const Processor processor; };
    const Caller other(make);
    make();
}

void TwoThreadsComeFirst()
{
    MayLoseBlocks();
    const auto live = [] {
        Processor processor;
        processor.Start();
        processor.Stop();
    };
    const Caller other(live);
    live();
}

void ShutdownMeetsCallers()
{
    MayLoseAll(); // the module stays for as long as the process
    ModuleCommandProcessor& module = ModuleCommandProcessor::GetInstance();
    Call call;
    const Caller other([&] { call.Make(*module.GetCommandProcessor()); });
    Varek::Runtime::Shutdown();
}

void ShutdownMeetsShutdown()
{
    MayLoseAll();
    ModuleCommandProcessor::GetInstance();
    const Caller other([] { Varek::Runtime::Shutdown(); });
    Varek::Runtime::Shutdown();
}

void ShutdownMeetsANewFunctor()
{
    MayLoseAll();
    ModuleCommandProcessor& module = ModuleCommandProcessor::GetInstance();
    int early = 0, late = 0;
    std::string told;
    module.OnShutdown(FunctorFor([&early] { ++early; }));
    {
        const Caller other(
            [&] { told = Failure([&] { module.OnShutdown(FunctorFor([&late] { ++late; })); }); });
        Varek::Runtime::Shutdown();
    }
    Expect(early == 1, "a functor ran " + std::to_string(early) + " times");
    Expect(late == (told.empty() ? 1 : 0), "told " + told + ", ran " + std::to_string(late));
    Expect(told.empty() || told == "ModuleStopped", "told " + told);
}

void EventShutsTheModuleDown()
{
    MayLoseAll();
    ModuleCommandProcessor& module = ModuleCommandProcessor::GetInstance();
    std::string told = "nothing";
    std::string* const answer = &told;
    module.GetDesyncScheduler()->ScheduleDesyncEvent(
        NewEvent([answer] { *answer = Failure([] { Varek::Runtime::Shutdown(); }); }));
    Varek::Runtime::Shutdown();
    Expect(told == "CannotFlushSelf" || told == "CannotStopSelf" || told == "nothing",
           "told " + told);
}

void CommandShutsTheModuleDown()
{
    MayLoseAll();
    ModuleCommandProcessor& module = ModuleCommandProcessor::GetInstance();
    std::string told = "CannotStopSelf";
    {
        const Caller other([&] {
            Call call;
            call.Make(*module.GetCommandProcessor(),
                      [&] { told = Failure([] { Varek::Runtime::Shutdown(); }); });
        });
        Varek::Runtime::Shutdown();
    }
    Expect(told == "CannotStopSelf" || told == "CannotFlushSelf", "told " + told);
}

} // namespace

std::vector<Scenario> ModuleScenarios()
{
    return {
        {"TwoThreadsMakeTheFirst", TwoThreadsMakeTheFirst, true},
        {"TwoThreadsComeFirst", TwoThreadsComeFirst, true},
        {"ShutdownMeetsCallers", ShutdownMeetsCallers, true},
        {"ShutdownMeetsShutdown", ShutdownMeetsShutdown, true},
        {"ShutdownMeetsANewFunctor", ShutdownMeetsANewFunctor, true},
        {"EventShutsTheModuleDown", EventShutsTheModuleDown, true},
        {"CommandShutsTheModuleDown", CommandShutsTheModuleDown, true},
    };
}
