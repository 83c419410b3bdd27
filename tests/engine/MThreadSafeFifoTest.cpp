#include "engine/MThreadSafeFifo.h"

#include "tests/engine/EngineFixtures.h"

namespace
{

// The queue never looks behind its pointers, so any numbers will do.
MDesyncEvent* Element(std::uintptr_t number)
{
    return reinterpret_cast<MDesyncEvent*>(number);
}

struct Fifo : testing::Test {
    void Put(std::initializer_list<std::uintptr_t> numbers)
    {
        for (std::uintptr_t number : numbers)
            fifo.Put(Element(number));
    }

    /// What the queue gives, `most` elements if it has them.
    std::string Take(int most = 99)
    {
        std::string taken;
        MDesyncEvent* element = nullptr;
        while (most-- > 0 && fifo.Get(element))
            taken += std::to_string(reinterpret_cast<std::uintptr_t>(element));
        return taken;
    }

    MThreadSafeFifo<MDesyncEvent*, MDesyncEvent*> fifo;
};

} // namespace

TEST_F(Fifo, EventIsSetByEveryPutAndClearedWithTheLastElement)
{
    MDesyncEvent* element = Element(7);
    EXPECT_FALSE(fifo.Peek(element) || fifo.Get(element) || fifo.Wait(1));
    EXPECT_EQ(Element(7), element);
    Put({1});
    ResetEvent(fifo.GetEvent());
    Put({2});
    EXPECT_EQ("1", Take(1));
    EXPECT_TRUE(fifo.Wait(0) && fifo.Peek(element));
    EXPECT_EQ(Element(2), element);
    EXPECT_EQ("2", Take(1));
    EXPECT_TRUE(fifo.IsEmpty());
    Put({3});
    fifo.Clear();
    EXPECT_TRUE(fifo.IsEmpty());
    Put({4, 5});
    EXPECT_EQ("45", Take());
}

TEST_F(Fifo, WrappedRingGrowsInQueueOrderAndThenTakesNoMemory)
{
    Put({1, 2, 3, 4});
    EXPECT_EQ("123", Take(3));
    Put({5, 6, 7, 8, 9});
    EXPECT_EQ("456789", Take());
    const auto putAndTake = [&] {
        for (int i = 0; i < 9; ++i) {
            Put({1, 2});
            EXPECT_EQ("12", Take());
        }
    };
    EXPECT_EQ(ShortageOutcome::NotMet, RunShortOfMemory(AllocationFailure::Throws, 1, putAndTake));
}

TEST_F(Fifo, PutWithoutMemoryLeavesTheQueueAndFreesTheLock)
{
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::AnswersNull,
                                  AllocationFailure::ThrowsForGood}) {
        fifo.Clear();
        Put({1, 2});
        ExpectOutOfMemory(how, [&] { Put({3}); });
        EXPECT_EQ(2, fifo.GetCount());
        RunOnThreads(1, [&](int) { Put({4}); });
        EXPECT_EQ("124", Take());
    }
}

TEST_F(Fifo, ProducersAndConsumersLoseAndDoubleNothing)
{
    const std::uintptr_t each = 2000;
    std::atomic<std::uintptr_t> sum{0}, taken{0};
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
