#include "tests/support/ChildProcess.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/Watchdog.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    int exitCode = 0;
    if (ChildScenario::IsChild(argc, argv, exitCode))
        return exitCode;

    testing::InitGoogleTest(&argc, argv);
    testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
    listeners.Append(new LeakCheck);
    listeners.Append(new Watchdog);
    return RUN_ALL_TESTS();
}
