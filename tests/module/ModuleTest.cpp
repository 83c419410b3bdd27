// A module in the hands of a host.

#include "diagnostics/KLogger.h"
#include "diagnostics/MFlowLogger.h"
#include "diagnostics/MKLoggerAdapter.h"
#include "foundation/MException.h"
#include "module/ModuleCommandProcessor.h"
#include "tests/module/LoadedModule.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/ForeignLogger.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/NullObject.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>

namespace
{

const wchar_t testModule[] = L"test-module.dll";

/// A logger of the host that a module may feed.
struct HostLog {
    HostLog() { LeakCheck::Skip(); } // it frees the names that the module has made

    /// Whether some record has all the texts.
    bool Shows(std::initializer_list<const char*> texts)
    {
        const std::vector<std::string> records = DumpedTexts(core);
        return std::any_of(records.begin(), records.end(), [&](const std::string& record) {
            return std::all_of(texts.begin(), texts.end(), [&](const char* text) {
                return record.find(text) != std::string::npos;
            });
        });
    }

    KLogger core;
    MKLoggerAdapter adapter{&core};
    MFlowLogger logger{&adapter};
};

template <class Parameter>
class CountedCallback : public Varek::Runtime::CallbackFunctor1Param<Parameter>
{
public:
    explicit CountedCallback(int& alive) : alive(alive) { ++alive; }
    ~CountedCallback() override { --alive; }
    void operator()(Parameter) override {}

private:
    int& alive;
};

void RegisterCounted(LoadedModule& module, int& texts, int& faults)
{
    module.RegisterFatalErrorHandlers(
        std::auto_ptr<TextCallback>(new CountedCallback<const std::wstring&>(texts)),
        std::auto_ptr<FaultCallback>(new CountedCallback<_EXCEPTION_POINTERS*>(faults)));
}

} // namespace

TEST(Module, BareItExportsAndImportsWhatIsListedAndNothingElse)
{
    std::set<std::string> listed;
    std::ifstream list(VAREK_SYMBOLS);
    for (std::string line; std::getline(list, line);)
        if (line[0] != '#')
            listed.insert(line);

    const LoadedModule module(L"varek.dll");
    std::set<std::string> found;
    for (const std::string& name : module.ListExports())
        found.insert("export " + name);
    for (const std::string& library : module.ListImportedLibraries())
        found.insert("import " + library);
    EXPECT_EQ(listed, found);
}

TEST(Module, AttachedLoggerStartsNoThreadAndThenSeesWhatHappens)
{
    HostLog host;
    LoadedModule module(testModule);
    module.AttachMFlowLogger(nullptr);
    module.AttachMFlowLogger(&host.logger);
    module.AttachMFlowLogger(nullptr);
    EXPECT_EQ(1u, DumpedTexts(host.core).size()); // of the joining itself

    module.Do(Place::Processor, Deed::Nothing);
    module.Do(Place::Scheduler, Deed::Nothing);
    module.Shutdown();
    EXPECT_TRUE(host.Shows({"Timing_point", "TestModule at Do", "(Command processor thread)"}));
    EXPECT_TRUE(host.Shows({"Timing_point", "TestModule at Do", "(Scheduler thread)"}));
    for (const char* state : {"to Starting", "to Running", "to Stopping", "to Inactive"})
        EXPECT_TRUE(host.Shows({"State_change", state, "in_class MEngineThread at ChangeState"}));
    for (const char* built : {"MCommandProcessor", "MDesyncEventScheduler", "MSchedulerThread",
                              "ModuleCommandProcessor"})
        EXPECT_TRUE(host.Shows({"Construction in_class", built}));
}

TEST(Module, LoggerOfAnotherClassEndsTheJoining)
{
    HostLog host;
    ForeignLogger foreign;
    MFlowLogger other(&foreign);
    LoadedModule module(testModule);
    module.AttachMFlowLogger(&host.logger);
    module.AttachMFlowLogger(&other);
    module.Shutdown();
    EXPECT_EQ(2u, DumpedTexts(host.core).size());
    EXPECT_TRUE(host.Shows({"Log_module_removed"}));
}

TEST(Module, ShutdownMayComeFirstAndAgain)
{
    HostLog host;
    LoadedModule module(testModule);
    module.AttachMFlowLogger(&host.logger);
    module.Shutdown();
    EXPECT_TRUE(host.Shows({"State_change to Running"}));
    module.Shutdown();
    EXPECT_EQ("MCommandProcessor.ExecuteSynchronously:ProcessorStopped",
              Raised([&] { module.Do(Place::Processor, Deed::Nothing); }));
    EXPECT_TRUE(module.Free());
}

TEST(Module, ShutdownFromAnEventStopsTheProcessorAndIsDismissed)
{
    HostLog host;
    LoadedModule module(testModule);
    module.AttachMFlowLogger(&host.logger);
    module.Do(Place::Scheduler, Deed::ShutDown);
    EXPECT_NE("", Raised([&] { module.Do(Place::Processor, Deed::Nothing); }));
    module.Do(Place::Scheduler, Deed::Nothing);
    EXPECT_TRUE(host.Shows({"Root_error CannotFlushSelf", "(Scheduler thread)"}));
    EXPECT_TRUE(host.Shows({"Dismissed_error", "at OnSchedulerEvent"}));
    module.Shutdown();
    EXPECT_TRUE(module.Free());
}

TEST(Module, FailureOfACommandReachesItsCaller)
{
    LoadedModule module(testModule);
    EXPECT_EQ("TestModule.Do:AsTold answer=42",
              Raised([&] { module.Do(Place::Processor, Deed::Raise); }));
    module.Shutdown();
}

TEST(Module, CallbacksAreReplacedAndDeletedAtTheLatestWhenItIsUnloaded)
{
    int texts = 0;
    int faults = 0;
    LoadedModule module(testModule);
    RegisterCounted(module, texts, faults);
    RegisterCounted(module, texts, faults);
    EXPECT_EQ(1, texts);
    EXPECT_EQ(1, faults);
    module.RegisterFatalErrorHandlers(std::auto_ptr<TextCallback>(),
                                      std::auto_ptr<FaultCallback>());
    EXPECT_EQ(0, texts);
    EXPECT_EQ(0, faults);
    module.Shutdown();
    RegisterCounted(module, texts, faults);
    EXPECT_EQ(1, texts);
    EXPECT_TRUE(module.Free());
    EXPECT_EQ(0, texts);
    EXPECT_EQ(0, faults);
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
