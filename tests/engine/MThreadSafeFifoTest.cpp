#include "engine/MThreadSafeFifo.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/support/Allocations.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <thread>

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

std::string TakeAll(Fifo& fifo)
{
    std::string taken;
    MDesyncEvent* element = nullptr;
    while (fifo.Get(element))
        taken += std::to_string(reinterpret_cast<std::uintptr_t>(element));
    return taken;
}

} // namespace

TEST(MThreadSafeFifo, EmptyQueueGivesNothing)
{
    Fifo fifo;
    MDesyncEvent* element = Element(7);
    EXPECT_FALSE(fifo.Peek(element));
    EXPECT_FALSE(fifo.Get(element));
    EXPECT_EQ(Element(7), element);
    EXPECT_TRUE(fifo.IsEmpty());
    EXPECT_FALSE(fifo.Wait(1));
    EXPECT_EQ(0, fifo.GetCount());
}

TEST(MThreadSafeFifo, EventIsSetExactlyWhileThereIsAnElement)
{
    Fifo fifo;
    MDesyncEvent* element = nullptr;
    PutAll(fifo, {1, 2});
    EXPECT_TRUE(fifo.Peek(element));
    EXPECT_EQ(Element(1), element);
    EXPECT_EQ(2, fifo.GetCount());
    fifo.Get(element);
    EXPECT_FALSE(fifo.IsEmpty());
    fifo.Get(element);
    EXPECT_EQ(Element(2), element);
    EXPECT_TRUE(fifo.IsEmpty());
    PutAll(fifo, {3});
    EXPECT_TRUE(fifo.Wait(0));
    fifo.Clear();
    EXPECT_TRUE(fifo.IsEmpty());
    PutAll(fifo, {4, 5});
    EXPECT_EQ("45", TakeAll(fifo));
}

TEST(MThreadSafeFifo, WrappedRingGrowsInQueueOrder)
{
    Fifo fifo;
    MDesyncEvent* element = nullptr;
    PutAll(fifo, {1, 2, 3, 4});
    for (int i = 0; i < 3; ++i)
        fifo.Get(element);
    PutAll(fifo, {5, 6, 7, 8, 9});
    EXPECT_EQ("456789", TakeAll(fifo));
}

TEST(MThreadSafeFifo, SteadyStateTakesNoMemory)
{
    Fifo fifo;
    PutAll(fifo, {1, 2});
    TakeAll(fifo);
    FailingAllocation failing(AllocationFailure::Throws, 1);
    for (int i = 0; i < 5; ++i) {
        MDesyncEvent* element = nullptr;
        fifo.Put(Element(1));
        fifo.Put(Element(2));
        fifo.Get(element);
        fifo.Get(element);
    }
    EXPECT_FALSE(failing.HasFailed());
}

TEST(MThreadSafeFifo, PutWithoutMemoryLeavesTheQueueAndFreesTheLock)
{
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::AnswersNull,
                                  AllocationFailure::ThrowsForGood}) {
        Fifo fifo;
        PutAll(fifo, {1, 2});
        FailingAllocation failing(how, 1);
        const ShortageOutcome outcome = RunShortOfMemory([&] { fifo.Put(Element(3)); });
        failing.Disarm();

        EXPECT_EQ(how == AllocationFailure::ThrowsForGood ? ShortageOutcome::RaisedBadAlloc
                                                          : ShortageOutcome::RaisedMException,
                  outcome);
        EXPECT_EQ(2, fifo.GetCount());
        std::thread([&] { fifo.Put(Element(4)); }).join();
        EXPECT_EQ("124", TakeAll(fifo));
    }
}

TEST(MThreadSafeFifo, ProducersAndConsumersLoseAndDoubleNothing)
{
    const std::uintptr_t each = 2000;
    Fifo fifo;
    std::atomic<std::uintptr_t> sum{0};
    std::atomic<std::uintptr_t> taken{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            for (std::uintptr_t number = 1; number <= each; ++number)
                fifo.Put(Element(number));
        });
        threads.emplace_back([&] {
            MDesyncEvent* element = nullptr;
            while (taken < 2 * each)
                if (fifo.Wait(1) && fifo.Get(element)) {
                    sum += reinterpret_cast<std::uintptr_t>(element);
                    ++taken;
                }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(each * (each + 1), sum);
    EXPECT_TRUE(fifo.IsEmpty());
}
