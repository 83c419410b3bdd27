#include "engine/MMutexLock.h"

#include "engine/MCallbackFunctor.h"
#include "engine/MMutexImp.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace
{

bool IsFree(MMutexImp& lock)
{
    bool free = false;
    std::thread([&] {
        free = lock.TryLock();
        if (free)
            lock.Unlock();
    }).join();
    return free;
}

} // namespace

TEST(MMutexImp, HolderTakesItAgainAndReleasesItAsOften)
{
    const std::unique_ptr<MMutexImp> lock(CreateMutexImp());
    EXPECT_TRUE(lock->Lock());
    EXPECT_TRUE(lock->TryLock());
    lock->Unlock();
    EXPECT_FALSE(IsFree(*lock));
    lock->Unlock();
    EXPECT_TRUE(IsFree(*lock));
}

TEST(MMutex, GuardReleasesWhenAnExceptionLeaves)
{
    MMutex mutex;
    try {
        MMutexLock outer(mutex);
        MMutexLock inner(mutex);
        throw 1;
    } catch (int) {
    }
    std::thread([&] { EXPECT_TRUE(mutex.Lock()); }).join();
}

TEST(MMutex, WithoutMemoryForALockItLocksNothing)
{
    FailingAllocation failing(AllocationFailure::AnswersNull, 1);
    MMutex mutex;
    EXPECT_FALSE(mutex.Lock());
    mutex.Unlock();
}

TEST(MCallbackFunctor, CallGoesThroughTheTableOfVirtualOperations)
{
    struct Base {
        virtual ~Base() = default;
        virtual void Call() { ++calls; }
        int calls = 0;
    };
    struct Derived : Base {
        void Call() override { calls += 10; }
    } target;
    const MCallbackFunctorPtr functor = MakeFunctor<Base>(&target, &Base::Call);
    functor->Invoke();
    EXPECT_EQ(10, target.calls);
}
