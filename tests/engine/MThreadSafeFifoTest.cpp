#include "engine/MThreadSafeFifo.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/engine/Imports.h"

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
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::AnswersNull,
                                  AllocationFailure::ThrowsForGood}) {
        Fifo fifo;
        MDesyncEvent* element = nullptr;
        const auto put = [&] { fifo.Put(Element(7)); };
        put();
        EXPECT_EQ(how == AllocationFailure::ThrowsForGood ? ShortageOutcome::RaisedBadAlloc
                                                          : ShortageOutcome::RaisedMException,
                  RunShortOfMemory(how, 1, put));
        EXPECT_TRUE(fifo.Get(element) && fifo.IsEmpty());
        EXPECT_EQ(ShortageOutcome::NotMet, RunShortOfMemory(how, 1, put));
        RunOnThreads(1, [=](int) { put(); });
        EXPECT_EQ(2, fifo.GetCount());
    }
}

TEST(MThreadSafeFifo, SetsAndClearsItsEventUnderTheLockThatGuardsTheRest)
{
    struct Step {
        std::function<void(Fifo&)> take;
        Import event; ///< met on the way, the queue holding one element
    };
    const Step put = {[](Fifo& fifo) { fifo.Put(Element(7)); }, Import::SetEvent};
    const Step get = {[](Fifo& fifo) {
                          MDesyncEvent* element = nullptr;
                          fifo.Get(element);
                      },
                      Import::ResetEvent};
    const Step clear = {&Fifo::Clear, Import::ResetEvent};
    for (const Step& first : {put, get, clear})
        for (const Step& second : {put, get, clear}) {
            Fifo fifo;
            fifo.Put(Element(1));
            std::thread other;
            const Action ahead = [&] {
                other = std::thread([&] { second.take(fifo); });
                Sleep(5);
            };
            DoAheadOfNext(first.event, ahead);
            first.take(fifo);
            other.join();
            EXPECT_EQ(fifo.GetCount() == 0, fifo.IsEmpty());
        }
}

TEST(MThreadSafeFifo, ProducersAndConsumersLoseAndDoubleNothing)
{
    Fifo fifo;
    const std::uintptr_t each = 2000;
    std::atomic<std::uintptr_t> sum{0};
    RunOnThreads(4, [&](int number) {
        MDesyncEvent* element = nullptr;
        for (std::uintptr_t i = 1; i <= each; ++i) {
            if (number < 2)
                fifo.Put(Element(i));
            else
                while (!fifo.Get(element))
                    fifo.Wait(1);
            sum += reinterpret_cast<std::uintptr_t>(element);
        }
    });
    EXPECT_EQ(each * (each + 1), sum);
    EXPECT_TRUE(fifo.IsEmpty());
}
