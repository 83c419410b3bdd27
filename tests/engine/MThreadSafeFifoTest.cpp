#include "engine/MThreadSafeFifo.h"

#include "tests/engine/EngineFixtures.h"

#include <gtest/gtest.h>

namespace
{

typedef MThreadSafeFifo<MDesyncEvent*, MDesyncEvent*> Fifo;

// The queue never looks behind its pointers, so any numbers will do.
MDesyncEvent* Element(std::uintptr_t number)
{
    return reinterpret_cast<MDesyncEvent*>(number);
}

void PutAll(Fifo& fifo, std::initializer_list<std::uintptr_t> numbers)
{
    for (std::uintptr_t number : numbers)
        fifo.Put(Element(number));
}

/// What the queue gives, `most` elements if it has them.
std::string Take(Fifo& fifo, int most)
{
    std::string taken;
    MDesyncEvent* element = nullptr;
    while (most-- > 0 && fifo.Get(element))
        taken += std::to_string(reinterpret_cast<std::uintptr_t>(element));
    return taken;
}

} // namespace

TEST(MThreadSafeFifo, EventIsSetExactlyWhileThereIsAnElement)
{
    Fifo fifo;
    MDesyncEvent* element = Element(7);
    EXPECT_FALSE(fifo.Peek(element));
    EXPECT_FALSE(fifo.Get(element));
    EXPECT_EQ(Element(7), element);
    EXPECT_FALSE(fifo.Wait(1));
    PutAll(fifo, {1, 2});
    EXPECT_TRUE(fifo.Peek(element));
    EXPECT_EQ(Element(1), element);
    EXPECT_EQ(2, fifo.GetCount());
    EXPECT_EQ("1", Take(fifo, 1));
    EXPECT_TRUE(fifo.Wait(0));
    EXPECT_EQ("2", Take(fifo, 1));
    EXPECT_TRUE(fifo.IsEmpty());
    PutAll(fifo, {3});
    EXPECT_FALSE(fifo.IsEmpty());
    fifo.Clear();
    EXPECT_TRUE(fifo.IsEmpty());
    PutAll(fifo, {4, 5});
    EXPECT_EQ("45", Take(fifo, 9));
}

TEST(MThreadSafeFifo, WrappedRingGrowsInQueueOrder)
{
    Fifo fifo;
    PutAll(fifo, {1, 2, 3, 4});
    EXPECT_EQ("123", Take(fifo, 3));
    PutAll(fifo, {5, 6, 7, 8, 9});
    EXPECT_EQ("456789", Take(fifo, 9));
}

TEST(MThreadSafeFifo, SteadyStateTakesNoMemory)
{
    Fifo fifo;
    PutAll(fifo, {1, 2});
    FailingAllocation failing(AllocationFailure::Throws, 1);
    for (int i = 0; i < 5; ++i) {
        Take(fifo, 1);
        fifo.Put(Element(1));
    }
    EXPECT_FALSE(failing.HasFailed());
}

TEST(MThreadSafeFifo, PutWithoutMemoryLeavesTheQueueAndFreesTheLock)
{
    for (AllocationFailure how : allocationFailures) {
        Fifo fifo;
        PutAll(fifo, {1, 2});
        ExpectOutOfMemory(how, [&] { fifo.Put(Element(3)); });
        EXPECT_EQ(2, fifo.GetCount());
        RunOnThreads(1, [&](int) { fifo.Put(Element(4)); });
        EXPECT_EQ("124", Take(fifo, 9));
    }
}

TEST(MThreadSafeFifo, ProducersAndConsumersLoseAndDoubleNothing)
{
    const std::uintptr_t each = 2000;
    Fifo fifo;
    std::atomic<std::uintptr_t> sum{0};
    std::atomic<std::uintptr_t> taken{0};
    RunOnThreads(4, [&](int number) {
        for (std::uintptr_t i = 1; number < 2 && i <= each; ++i)
            fifo.Put(Element(i));
        MDesyncEvent* element = nullptr;
        while (number >= 2 && taken < 2 * each)
            if (fifo.Wait(1) && fifo.Get(element)) {
                sum += reinterpret_cast<std::uintptr_t>(element);
                ++taken;
            }
    });
    EXPECT_EQ(each * (each + 1), sum);
    EXPECT_TRUE(fifo.IsEmpty());
}
