#include "engine/MMutex.h"

#include "tests/support/Allocations.h"

TEST(MMutex, WithoutMemoryForALockItLocksNothing)
{
    RunShortOfMemory(AllocationFailure::AnswersNull, 1, [] {
        MMutex mutex;
        EXPECT_FALSE(mutex.Lock());
        mutex.Unlock();
    });
}
