#include "engine/MCommandProcessor.h"
#include "engine/MSchedulerThread.h"
#include "engine/StackReserve.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"

#include <utility>

namespace
{

const char guarantee[] = "SetThreadStackGuarantee";
const char query[] = "VirtualQuery";
int protections;

BOOL WINAPI Protect(void* start, SIZE_T size, DWORD access, DWORD* before)
{
    ++protections;
    return VirtualProtectEx(GetCurrentProcess(), start, size, access, before);
}

} // namespace

extern "C" {
decltype(&SetThreadStackGuarantee) __imp_SetThreadStackGuarantee = CallOrFail<guarantee, FALSE>;
decltype(&VirtualQuery) __imp_VirtualQuery = CallOrFail<query, 0>;
decltype(&VirtualProtect) __imp_VirtualProtect = Protect;
}

TEST(ThreadDeath, StackWhoseReserveTheSystemRefusesStaysAsItIs)
{
    const auto reserve = [] {
        protections = 0;
        ReserveStackForFailures();
        return protections;
    };
    ForEachFailingCall(reserve, [](const std::string&, int made) { EXPECT_EQ(0, made); });
}

TEST(ThreadDeath, StartWhoseThreadLacksMemoryIsToldToBothSidesAndCanBeRepeated)
{
    LeakCheck::Skip(); // what nobody catches stays
    const auto endThread = [](_EXCEPTION_POINTERS*) -> LONG { ExitThread(0); };
    const auto before = SetUnhandledExceptionFilter(endThread);
    Script script;
    MCommandProcessor processor(&script, nullptr, nullptr, nullptr, 0);
    MSchedulerThread scheduler(&script), untold(nullptr);
    for (MEngineThread* const thread :
         {static_cast<MEngineThread*>(&processor), static_cast<MEngineThread*>(&scheduler),
          static_cast<MEngineThread*>(&untold)}) {
        thread->Start();
        thread->Stop();
        int nth = 0;
        for (bool met = true; met; thread->Stop()) {
            ArmAllocationFailureElsewhere(AllocationFailure::Throws, ++nth);
            const std::string raised = Raised([&] { thread->Start(); });
            met = DisarmAllocationFailure();
            EXPECT_EQ(met ? "MEngineThread.Start:ThreadExitedUnexpectedly" : "", raised);
            EXPECT_EQ(met && thread != &untold ? "fault;" : "", std::exchange(script.failures, ""));
            if (met)
                thread->Start();
        }
        EXPECT_LT(1, nth);
    }
    SetUnhandledExceptionFilter(before);
}
