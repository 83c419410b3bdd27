// A module in the hands of a host.

#include "diagnostics/KLogger.h"
#include "diagnostics/MFlowLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "module/ModuleCommandProcessor.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/ForeignLogger.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/NullObject.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <regex>

namespace
{

/// A logger of the host that a module may feed.
struct HostLog {
    HostLog() { LeakCheck::Skip(); } // it frees the names that the module has made

    /// Whether some record has this.
    bool Shows(const char* pattern)
    {
        return std::regex_search(TakeDump(core), std::regex(pattern));
    }

    /// The lives of the processor, and of the scheduler's thread, which has no name.
    std::string History()
    {
        const std::string dump = TakeDump(core);
        const std::regex change("State_change to (\\w+) in_class MEngineThread at ChangeState "
                                "for_object \\w+ \\((\\w+)");
        std::string history;
        for (std::sregex_iterator i(dump.begin(), dump.end(), change), end; i != end; ++i)
            history += i->str(2) + " " + i->str(1) + ", ";
        return history;
    }

    KLogger core;
    MKLoggerAdapter adapter{&core};
    MFlowLogger logger{&adapter};
};

} // namespace

TEST(Module, AttachedLoggerStartsNoThreadAndThenSeesWhatHappensUntilItIsDetached)
{
    HostLog host;
    LoadedModule module;
    module->AttachMFlowLogger(nullptr);
    module->AttachMFlowLogger(&host.logger);
    module->AttachMFlowLogger(nullptr);
    EXPECT_EQ(1u, DumpedTexts(host.core).size()); // of the joining itself

    module->Do(Place::Processor, [] {});
    module->Shutdown();
    EXPECT_EQ("unknown Starting, unknown Running, processor Starting, processor Running, "
              "processor Stopping, processor Inactive, unknown Stopping, unknown Inactive, ",
              host.History());
    EXPECT_TRUE(host.Shows("MCommandProcessor at ThreadFunction .*Command processor thread"));
    EXPECT_TRUE(host.Shows("MSchedulerThread at ThreadFunction .*Scheduler thread"));
    EXPECT_TRUE(host.Shows("Construction in_class ModuleCommandProcessor"));

    ForeignLogger foreign;
    MFlowLogger other(&foreign);
    module->AttachMFlowLogger(&other);
    EXPECT_TRUE(host.Shows("Log_module_removed"));
    const std::size_t seen = DumpedTexts(host.core).size();
    module->Shutdown();
    EXPECT_EQ(seen, DumpedTexts(host.core).size());
}

TEST(Module, ShutdownMayComeFirstAndAgain)
{
    HostLog host;
    LoadedModule module;
    module->AttachMFlowLogger(&host.logger);
    module->Shutdown();
    EXPECT_TRUE(host.Shows("State_change to Running"));
    module->Shutdown();
    EXPECT_EQ("MCommandProcessor.ExecuteSynchronously:ProcessorStopped",
              Raised([&] { module->Do(Place::Processor, [] {}); }));
    EXPECT_TRUE(module.Free());
}

TEST(Module, ShutdownFromAnEventStopsTheProcessorAndIsDismissed)
{
    HostLog host;
    LoadedModule module;
    module->AttachMFlowLogger(&host.logger);
    module->Do(Place::Scheduler, module->Shutdown);
    EXPECT_NE("", Raised([&] { module->Do(Place::Processor, [] {}); }));
    module->Do(Place::Scheduler, [] {});
    EXPECT_TRUE(host.Shows("Root_error CannotFlushSelf .*Scheduler thread"));
    EXPECT_TRUE(host.Shows("Dismissed_error .* at OnSchedulerEvent"));
    module->Shutdown();
    EXPECT_TRUE(module.Free());
}

TEST(Module, FailureOfACommandReachesItsCallerAndThatOfAThreadTheHostAsText)
{
    LoadedModule module;
    EXPECT_EQ("TestModule.Raise:AsTold answer=42",
              Raised([&] { module->Do(Place::Processor, module->Raise); }));
    module->Do(Place::OwnThread, module->Raise); // told to nobody yet
    std::wstring told;
    module.Register([&](const std::wstring& text) { told += text; }, nullptr);
    module->Do(Place::OwnThread, module->Raise);
    const wchar_t chain[] = L"<ExceptionChain>\n<Exception>\n<Error>\n"
                            L"<Code type=\"string\">TestModule.Raise:AsTold</Code>";
    EXPECT_NE(std::wstring::npos, told.find(chain)) << told.c_str();
    module->Shutdown();
}

TEST(Module, CallbacksAreReplacedAndDeletedAtTheLatestWhenItIsUnloaded)
{
    const auto alive = std::make_shared<int>();
    LoadedModule module;
    const auto registerBoth = [&] {
        module.Register([alive](const std::wstring&) {}, [alive](_EXCEPTION_POINTERS*) {});
    };
    registerBoth();
    const long registered = alive.use_count();
    registerBoth();
    EXPECT_EQ(registered, alive.use_count());
    module.Register(nullptr, nullptr);
    EXPECT_EQ(registered - 2, alive.use_count());
    module->Shutdown();
    registerBoth();
    EXPECT_EQ(registered, alive.use_count());
    EXPECT_TRUE(module.Free());
    EXPECT_EQ(registered - 2, alive.use_count());
}

TEST(ModuleCommandProcessor, NullObjectDoesNothing)
{
    ModuleCommandProcessor* const none = NullObject<ModuleCommandProcessor>();
    none->ModuleCommandProcessor::Start();
    none->ModuleCommandProcessor::Stop();
    none->ModuleCommandProcessor::OnCommandProcessorIdle();
    none->ModuleCommandProcessor::OnSpontaneousError(MException());
    none->ModuleCommandProcessor::OnUnhandledException(nullptr);
}
