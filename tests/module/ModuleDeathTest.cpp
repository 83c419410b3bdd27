// How a process ends in which a module fails, or is left as it is.

#include "tests/module/LoadedModule.h"
#include "tests/support/LeakCheck.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace
{

const int ownExitCode = 7;

void PrintFault(_EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    std::fprintf(stderr, "%08lx at %llx;", record.ExceptionCode, record.ExceptionInformation[1]);
    std::fflush(stderr);
}

/// A host that has something done and then leaves without a shutdown.
void Host(TestModule::DoOnThread TestModule::*place, const Action& action)
{
    LoadedModule module;
    module.Register(nullptr, PrintFault);
    (module.*place)(action);
    module.Free();
    std::exit(ownExitCode);
}

} // namespace

TEST(ModuleDeathTest, FaultAndForeignExceptionReachTheHostOnceAndEndTheProcess)
{
    LeakCheck::Skip(); // the first child leaves something for the next
    const auto fails = [](int exitCode) { return exitCode != 0 && exitCode != ownExitCode; };
    const auto fault = [] { *reinterpret_cast<volatile int*>(0x1234) = 1; };
    for (auto place : {&TestModule::DoOnProcessor, &TestModule::DoOnScheduler}) {
        EXPECT_EXIT(Host(place, fault), testing::ExitedWithCode(EXCEPTION_ACCESS_VIOLATION),
                    "^c0000005 at 1234;$");
        EXPECT_EXIT(Host(place, [] { throw 7; }), fails, "^20474343 at \\w*;$");
    }
}

TEST(ModuleDeathTest, HostThatLeavesWithoutShutdownEndsWithItsOwnExitCode)
{
    LeakCheck::Skip();
    const auto leaveHanging = [] {
        std::thread([] { Host(&TestModule::DoOnProcessor, [] { Sleep(INFINITE); }); }).detach();
        Sleep(200);
        std::exit(ownExitCode);
    };
    EXPECT_EXIT(Host(&TestModule::DoOnProcessor, [] {}), testing::ExitedWithCode(ownExitCode),
                "^$");
    EXPECT_EXIT(leaveHanging(), testing::ExitedWithCode(ownExitCode), "^$");
}
