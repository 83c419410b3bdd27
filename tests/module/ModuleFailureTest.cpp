// How a process ends in which a module fails, or is left as it is.

#include "tests/module/LoadedModule.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <thread>

#include <windows.h>

namespace
{

const wchar_t testModule[] = L"test-module.dll";
const int ownExitCode = 7;

class TextPrinter : public TextCallback
{
public:
    void operator()(const std::wstring& text) override
    {
        std::printf("told: %ls\n", text.c_str());
        std::fflush(stdout);
    }
};

class FaultPrinter : public FaultCallback
{
public:
    void operator()(_EXCEPTION_POINTERS* pointers) override
    {
        const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
        std::printf("told: %08lx at %llx\n", record.ExceptionCode, record.ExceptionInformation[1]);
        std::fflush(stdout);
    }
};

/// A host that has a deed done and then ends without a shutdown.
int Host(Place place, Deed deed)
{
    LoadedModule module(testModule);
    module.RegisterFatalErrorHandlers(std::auto_ptr<TextCallback>(new TextPrinter),
                                      std::auto_ptr<FaultCallback>(new FaultPrinter));
    module.Do(place, deed);
    return ownExitCode;
}

const ChildScenario processorFaults("processor-faults",
                                    [] { return Host(Place::Processor, Deed::Fault); });
const ChildScenario schedulerFaults("scheduler-faults",
                                    [] { return Host(Place::Scheduler, Deed::Fault); });
const ChildScenario processorThrows("processor-throws",
                                    [] { return Host(Place::Processor, Deed::ThrowForeign); });
const ChildScenario schedulerThrows("scheduler-throws",
                                    [] { return Host(Place::Scheduler, Deed::ThrowForeign); });
const ChildScenario ownThreadRaises("own-thread-raises",
                                    [] { return Host(Place::OwnThread, Deed::Raise); });

int LeaveRunning()
{
    return Host(Place::Processor, Deed::Nothing);
}
const ChildScenario leavesRunning("leaves-running", LeaveRunning);

int LeaveHanging()
{
    std::thread([] { Host(Place::Processor, Deed::Hang); }).detach();
    Sleep(200);
    return ownExitCode;
}
const ChildScenario leavesHanging("leaves-hanging", LeaveHanging);

int FreeRunning()
{
    LoadedModule module(testModule);
    module.Do(Place::Scheduler, Deed::Nothing);
    return module.Free() ? 1 : ownExitCode;
}
const ChildScenario freesRunning("frees-running", FreeRunning);

void ExpectToldOnce(const std::string& told, const ChildOutcome& outcome)
{
    const std::size_t found = outcome.output.find(told);
    EXPECT_NE(std::string::npos, found) << std::hex << outcome.exitCode << ": " << outcome.output;
    EXPECT_EQ(found, outcome.output.rfind("told:")) << outcome.output;
}

} // namespace

TEST(ModuleFailure, FaultReachesTheHostAsItWasAndEndsTheProcess)
{
    for (const ChildScenario* faults : {&processorFaults, &schedulerFaults}) {
        const ChildOutcome outcome = faults->RunInChild();
        ExpectToldOnce("told: c0000005 at 1234", outcome);
        EXPECT_EQ(0xC0000005, outcome.exitCode);
    }
}

TEST(ModuleFailure, ForeignExceptionReachesTheHostAndEndsTheProcess)
{
    for (const ChildScenario* throws : {&processorThrows, &schedulerThrows}) {
        const ChildOutcome outcome = throws->RunInChild();
        ExpectToldOnce("told: 20474343", outcome);
        EXPECT_NE(0u, outcome.exitCode);
        EXPECT_NE(124u, outcome.exitCode);
    }
}

TEST(ModuleFailure, ExceptionThatEndsAnEngineThreadReachesTheHostAsText)
{
    const ChildOutcome outcome = ownThreadRaises.RunInChild();
    ExpectToldOnce("told: <?xml", outcome);
    for (const char* part : {"<ExceptionChain>", "TestModule.Do:AsTold", "answer", "42"})
        EXPECT_NE(std::string::npos, outcome.output.find(part)) << outcome.output;
    EXPECT_EQ(ownExitCode, static_cast<int>(outcome.exitCode));
}

TEST(ModuleFailure, HostThatLeavesWithoutShutdownEndsWithItsOwnExitCode)
{
    for (const ChildScenario* leaves : {&leavesRunning, &leavesHanging, &freesRunning}) {
        const ChildOutcome outcome = leaves->RunInChild();
        EXPECT_EQ(ownExitCode, static_cast<int>(outcome.exitCode)) << outcome.output;
        EXPECT_EQ("", outcome.output);
    }
}
