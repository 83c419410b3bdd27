#include "engine/MMutex.h"

#include "tests/support/Allocations.h"

TEST(MMutex, WithoutMemoryForALockItLocksNothing)
{
    FailingAllocation failing(AllocationFailure::AnswersNull, 1);
    MMutex mutex;
    EXPECT_FALSE(mutex.Lock());
    mutex.Unlock();
}
