#include "engine/MThreadSafeFifo.h"

#include "tests/engine/EngineFixtures.h"

#include <deque>
#include <random>

namespace
{

typedef MThreadSafeFifo<MDesyncEvent*, MDesyncEvent*> Fifo;

// The queue never looks behind its pointers, so any numbers will do.
MDesyncEvent* Element(std::uintptr_t number)
{
    return reinterpret_cast<MDesyncEvent*>(number);
}

} // namespace

TEST(MThreadSafeFifo, GivesInOrderWithItsEventSetWhileItHoldsAnything)
{
    Fifo fifo;
    std::deque<MDesyncEvent*> expected;
    std::minstd_rand random;
    for (std::uintptr_t step = 1; step <= 5000; ++step) {
        MDesyncEvent *const fresh = Element(step), *seen = fresh, *taken = fresh;
        const bool holds = !expected.empty();
        EXPECT_EQ(holds, fifo.Peek(seen));
        EXPECT_EQ(holds ? expected.front() : fresh, seen);
        if (step % 500 == 0) {
            fifo.Clear();
            expected.clear();
        } else if (random() % 2 == 0) {
            ResetEvent(fifo.GetEvent()); // every element sets it
            fifo.Put(fresh);
            expected.push_back(fresh);
        } else {
            EXPECT_EQ(holds, fifo.Get(taken));
            EXPECT_EQ(seen, taken);
            if (holds)
                expected.pop_front();
        }
        EXPECT_EQ(expected.size(), static_cast<std::size_t>(fifo.GetCount()));
        ASSERT_EQ(expected.empty(), fifo.IsEmpty());
    }
}

TEST(MThreadSafeFifo, OnlyGrowthTakesMemoryAndWithoutItLeavesTheQueueAndFreesTheLock)
{
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::AnswersNull}) {
        Fifo fifo;
        MDesyncEvent* element = nullptr;
        const auto put = [&] { fifo.Put(Element(7)); };
        put();
        EXPECT_EQ(ShortageOutcome::RaisedMException, RunShortOfMemory(how, 1, put));
        EXPECT_TRUE(fifo.Get(element) && fifo.IsEmpty());
        EXPECT_EQ(ShortageOutcome::NotMet, RunShortOfMemory(how, 1, put));
        RunOnThreads(1, [=](int) { put(); });
        EXPECT_EQ(2, fifo.GetCount());
    }
}

TEST(MMutex, WithoutMemoryForALockItLocksNothing)
{
    RunShortOfMemory(AllocationFailure::AnswersNull, 1, [] {
        MMutex mutex;
        EXPECT_FALSE(mutex.Lock());
        mutex.Unlock();
    });
}
