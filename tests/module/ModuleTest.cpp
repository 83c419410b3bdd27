// A module in the hands of a host.

#include "diagnostics/KLogger.h"
#include "diagnostics/MFlowLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "module/ModuleCommandProcessor.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/Gate.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/Raised.h"
#include "tests/support/Regex.h"
#include "varek/OpenHandles.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

/// The lives of the processor, and of the scheduler's thread, which has no name.
std::string History(const std::string& dump)
{
    return Matches(dump,
                   "State_change to (\\w+) in_class MEngineThread at ChangeState "
                   "for_object \\w+ \\((\\w+)",
                   "$2 $1, ");
}

/// Has the first, second, third ... allocation of a start fail, up to `limit` or until it starts,
/// and answers which allocation that was. What is made once stays: after some attempts with the
/// same allocation failing nothing more is held after one than before it.
int FailToStart(LoadedModule& module, AllocationFailure how, int limit)
{
    const auto holds = [&] { return module.CountBlocks() + int(varek::CountOpenHandles()); };
    int nth = 1;
    for (int attempts = 0; nth < limit; ++attempts) {
        EXPECT_GT(20 * nth, attempts) << "allocation " << nth;
        const std::int64_t held = holds();
        module.ArmAllocationFailure(how, nth);
        try {
            module.Register(nullptr, nullptr);
            EXPECT_FALSE(module.DisarmAllocationFailure());
            return nth;
        } catch (...) {
            EXPECT_TRUE(module.DisarmAllocationFailure());
        }
        nth += held == holds() || attempts > 20 * nth;
    }
    return nth;
}

} // namespace

TEST(Module, StartsWithTheFirstCallStopsForGoodAndIsSeenByTheAttachedLogger)
{
    LeakCheck::Skip(); // the log of the host frees the names that the module has made
    for (bool works : {true, false}) {
        KLogger core;
        MKLoggerAdapter adapter(&core);
        MFlowLogger logger(&adapter), foreign(nullptr);
        LoadedModule module;
        const auto work = [&] { module.DoOnProcessor([] { Raise("Why"); }); };
        module.AttachMFlowLogger(&logger);
        module.AttachMFlowLogger(nullptr);
        EXPECT_EQ(1u, DumpedTexts(core).size()); // of the joining itself
        std::thread another([&] { works ? module.Register(nullptr, nullptr) : void(); });
        EXPECT_EQ(works ? "Why" : "", works ? Raised(work) : "");
        another.join();
        module.Shutdown();
        EXPECT_EQ("MCommandProcessor.ExecuteSynchronously:ProcessorStopped", Raised(work));
        module.AttachMFlowLogger(&foreign);
        const std::string dump = TakeDump(core);
        EXPECT_EQ("unknown Starting, unknown Running, processor Starting, processor Running, "
                  "processor Stopping, processor Inactive, unknown Stopping, unknown Inactive, ",
                  History(dump));
        for (const char* shown : {"(Command processor thread)", "(Scheduler thread)"})
            EXPECT_NE(std::string::npos, dump.find(shown)) << shown;
        EXPECT_TRUE(module.Free());
        EXPECT_EQ(ReadDump(dump).size(), DumpedTexts(core).size());
    }
}

TEST(Module, IsConstructedInItsOrderAheadOfTheStaticsOfItsAuthor)
{
    const std::wstring order =
        L"adapter MDiagnosticsRegistry MLocale classic MString MError MErrorOutOfMemory "
        L"MErrorInternal MErrorDivisionByZero MErrorBadInput MErrorUserEscape MTime MDynObject "
        L"MCommandSynchronous MDesyncEventScheduler MCommandProcessor MEngineThread "
        L"MSchedulerThread core ModuleCommandProcessor TestModule ";
    EXPECT_EQ(order, std::wstring(LoadedModule().startUp).substr(0, order.size()));
}

TEST(Module, ShutdownOnItsOwnThreadsSaysSoAtOnceAlsoWhileTheHostIsInsideOne)
{
    LeakCheck::Skip(); // the module makes what is caught here
    const std::pair<TestModule::DoOnThread TestModule::*, const char*> cases[] = {
        {&TestModule::DoOnProcessor, "MEngineThread.Stop:CannotStopSelf"},
        {&TestModule::DoOnScheduler, "MEngineThread.Flush:CannotFlushSelf"}};
    for (const auto& failing : cases) {
        LoadedModule module;
        Gate inside, done;
        const Action hold = [&] {
            inside.Open();
            done.Pass();
        };
        const Action shutdown = [&] { EXPECT_EQ(failing.second, Raised(module.Shutdown)); };
        (module.*failing.first)(shutdown);
        module.DoOnProcessor([] {}); // nothing has been stopped
        module.OnShutdown(hold);
        std::thread host(module.Shutdown);
        inside.Pass();
        (module.*failing.first)(shutdown);
        done.Open();
        host.join();
        EXPECT_TRUE(module.Free());
    }
}

TEST(Module, ShutdownRunsWhatWasRegisteredForItBackwardsWhileItsThreadsStillWork)
{
    std::string ran;
    LoadedModule module;
    const Action works = [&] { ran += "works "; };
    const Action late = [&] { ran += "late "; };
    const Action actions[] = {[&] { module.DoOnProcessor(works); }, [] { throw 7; }, nullptr,
                              [&] {
                                  module.OnShutdown(late);
                                  Raise("dismissed");
                              }};
    for (const Action& action : actions)
        module.OnShutdown(action);
    for (int time = 0; time < 2; ++time)
        module.Shutdown();
    EXPECT_EQ("late works ", ran);
    EXPECT_EQ("ModuleCommandProcessor.OnShutdown:ModuleStopped",
              Raised([&] { module.OnShutdown(late); }));
    EXPECT_TRUE(module.Free());
}

TEST(Module, ShutdownLetsGoOfItAlsoWhenItsSchedulerHasDied)
{
    LeakCheck::Skip(); // the module makes what is caught here
    LoadedModule module;
    Gate dying;
    const Action die = [&] {
        dying.Open();
        ExitThread(0);
    };
    module.Schedule(die);
    dying.Pass();
    for (int time = 0; time < 2; ++time)
        EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", Raised(module.Shutdown));
    EXPECT_TRUE(module.Free());
}

TEST(Module, ShutdownThatTheSystemHindersCanBeRepeatedAndLetsGoOfItInTheEnd)
{
    LeakCheck::Skip(); // the module makes what is caught here
    std::string failed = "none";
    for (int nth = 1; !failed.empty(); ++nth) {
        LoadedModule module;
        module.ArmFailingCall(nth);
        module.Register(nullptr, nullptr);
        Gate inside;
        const Action linger = [&] { inside.Open(), Sleep(20); };
        std::thread caller(module.DoOnProcessor, std::cref(linger));
        inside.Pass();
        const std::string raised = Raised(module.Shutdown);
        caller.join();
        failed = module.DisarmFailingCall();
        EXPECT_TRUE(raised.empty() || failed == "WaitForSingleObject") << raised;
        Raised(module.Shutdown); // may find a thread that has ended since
        EXPECT_TRUE(module.Free()) << nth;
    }
}

TEST(Module, StartWithoutMemoryLeavesNothingTheNextBeginsAfreshAndShutdownNeedsNone)
{
    LeakCheck::Skip(); // the module makes what is caught here
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::ThrowsForGood}) {
        LoadedModule module;
        const int last = FailToStart(module, how, 1000);
        module.DoOnProcessor([] {});
        module.DoOnScheduler([] {});
        module.ArmAllocationFailure(AllocationFailure::ThrowsForGood, 1);
        module.Shutdown();
        EXPECT_FALSE(module.DisarmAllocationFailure());
        EXPECT_TRUE(module.Free());

        LoadedModule never;
        FailToStart(never, how, last);
        EXPECT_TRUE(never.Free()); // nothing runs in it
    }
}

TEST(Module, CallbacksAreReplacedAndDeletedAtTheLatestWhenItIsUnloaded)
{
    const auto alive = std::make_shared<int>();
    LoadedModule module;
    const auto count = [&] {
        auto text = module.NewCallback<const std::wstring&>([alive](auto&) {});
        auto fault = module.NewCallback<_EXCEPTION_POINTERS*>([alive](auto) {});
        const auto same = std::make_pair(text.get(), fault.get());
        module.RegisterFatalErrorHandlers(text, fault);
        module.RegisterFatalErrorHandlers(decltype(text)(same.first), decltype(fault)(same.second));
        return alive.use_count();
    };
    const long registered = count();
    EXPECT_EQ(registered, count());
    module.Register(nullptr, nullptr);
    EXPECT_EQ(registered - 2, alive.use_count());
    module.Shutdown();
    EXPECT_EQ(registered, count());
    EXPECT_TRUE(module.Free());
    EXPECT_EQ(registered - 2, alive.use_count());
}

TEST(ModuleCommandProcessor, NullObjectDoesNothingAndWithoutCallbacksNobodyIsTold)
{
    LeakCheck::Skip(); // what the singleton of this program has made stays
    ModuleCommandProcessor* volatile none = nullptr;
    none->ModuleCommandProcessor::Start();
    none->ModuleCommandProcessor::Stop();
    for (ModuleCommandProcessor* const module : {none, &ModuleCommandProcessor::GetInstance()}) {
        module->ModuleCommandProcessor::OnSpontaneousError(MException());
        module->ModuleCommandProcessor::OnUnhandledException(nullptr);
    }
    ModuleCommandProcessor::GetInstance().Stop();
}
