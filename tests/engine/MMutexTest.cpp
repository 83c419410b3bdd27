#include "engine/MMutex.h"

#include "engine/MMutexImp.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

TEST(MMutexImp, HolderTakesItAgainAndReleasesItAsOften)
{
    const std::unique_ptr<MMutexImp> lock(CreateMutexImp());
    EXPECT_TRUE(lock->Lock());
    EXPECT_TRUE(lock->TryLock());
    for (bool isFree : {false, true}) {
        lock->Unlock();
        std::thread([&] {
            EXPECT_EQ(isFree, lock->TryLock());
            if (isFree)
                lock->Unlock();
        }).join();
    }
}

TEST(MMutex, WithoutMemoryForALockItLocksNothing)
{
    FailingAllocation failing(AllocationFailure::AnswersNull, 1);
    MMutex mutex;
    EXPECT_FALSE(mutex.Lock());
    mutex.Unlock();
}
