#include "engine/MCommandProcessor.h"
#include "engine/MSchedulerThread.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"

#include <utility>

TEST(ThreadDeath, StartWhoseThreadLacksMemoryIsToldToBothSidesAndCanBeRepeated)
{
    LeakCheck::Skip(); // what nobody catches stays
    const auto endThread = [](_EXCEPTION_POINTERS*) -> LONG { ExitThread(0); };
    const auto before = SetUnhandledExceptionFilter(endThread);
    Script script;
    MCommandProcessor processor(&script, nullptr, nullptr, nullptr, 0);
    MSchedulerThread scheduler(&script);
    for (MEngineThread* const thread :
         {static_cast<MEngineThread*>(&processor), static_cast<MEngineThread*>(&scheduler)}) {
        thread->Start();
        thread->Stop();
        int nth = 0;
        for (bool met = true; met; thread->Stop()) {
            ArmAllocationFailureElsewhere(AllocationFailure::Throws, ++nth);
            const std::string raised = Raised([&] { thread->Start(); });
            met = DisarmAllocationFailure();
            EXPECT_EQ(met ? "MEngineThread.Start:ThreadExitedUnexpectedly" : "", raised);
            EXPECT_EQ(met ? "fault;" : "", std::exchange(script.failures, ""));
            if (met)
                thread->Start();
        }
        EXPECT_LT(1, nth);
    }
    SetUnhandledExceptionFilter(before);
}
