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
const int toldTwiceExitCode = 8;

void PrintFault(_EXCEPTION_POINTERS* pointers)
{
    static bool told = false;
    if (told)
        std::_Exit(toldTwiceExitCode);
    told = true;
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    std::fprintf(stderr, "%08lx at %llx", record.ExceptionCode, record.ExceptionInformation[1]);
    std::fflush(stderr);
}

/// A host that has something done and then leaves without a shutdown.
void Host(Place place, const Action& action)
{
    {
        LoadedModule module;
        module.Register(nullptr, PrintFault);
        module->Do(place, action);
    }
    std::exit(ownExitCode);
}

struct ModuleDeathTest : testing::Test {
    ModuleDeathTest() { LeakCheck::Skip(); } // the first child leaves something for the next
};

} // namespace

TEST_F(ModuleDeathTest, FaultAndForeignExceptionReachTheHostOnceAndEndTheProcess)
{
    const auto fails = [](int exitCode) {
        return exitCode != 0 && exitCode != ownExitCode && exitCode != toldTwiceExitCode;
    };
    const auto fault = [] { *reinterpret_cast<volatile int*>(0x1234) = 1; };
    for (Place place : {Place::Processor, Place::Scheduler}) {
        EXPECT_EXIT(Host(place, fault), testing::ExitedWithCode(EXCEPTION_ACCESS_VIOLATION),
                    "^c0000005 at 1234$");
        EXPECT_EXIT(Host(place, [] { throw 7; }), fails, "^20474343 at ");
    }
}

TEST_F(ModuleDeathTest, HostThatLeavesWithoutShutdownEndsWithItsOwnExitCode)
{
    const auto leaveHanging = [] {
        std::thread([] { Host(Place::Processor, [] { Sleep(INFINITE); }); }).detach();
        Sleep(200);
        std::exit(ownExitCode);
    };
    EXPECT_EXIT(Host(Place::Processor, [] {}), testing::ExitedWithCode(ownExitCode), "^$");
    EXPECT_EXIT(leaveHanging(), testing::ExitedWithCode(ownExitCode), "^$");
}
