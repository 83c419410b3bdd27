#include "engine/MEngineThread.h"

#include "tests/engine/EngineFixtures.h"

const char diedInFlush[] = "MEngineThread.Flush:ThreadExitedUnexpectedly";

TEST(MEngineThread, EachLifeServesItsFlushesAndItsStopOnce)
{
    ScriptedThread thread;
    const auto hasEnded = [&] { return WaitForSingleObject(thread.GetEndedEvent(), 0) == 0; };
    for (int life = 0; life < 2; ++life) {
        thread.Stop();
        thread.Flush();
        thread.Start();
        EXPECT_FALSE(hasEnded());
        thread.Flush();
        thread.Stop();
        EXPECT_TRUE(hasEnded());
    }
    EXPECT_EQ("start flush stop start flush stop ", thread.calls);
}

// The request of a flush that failed is served by the next thread, ahead of a stop, and what that
// leaves set satisfies the next flush at once, alive or not.
TEST(MEngineThread, ThreadThatDiesAtOnceHasStartedAndLeavesItsFlushToTheNext)
{
    ScriptedThread thread;
    thread.onStarted = [] { Raise("dies"); };
    thread.Start();
    EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
    thread.Stop();

    thread.onStarted = [&] {
        while (!thread.IsStopRequested())
            Sleep(1);
    };
    thread.Start();
    thread.Stop();
    EXPECT_EQ("start start flush stop ", thread.calls);

    thread.onStarted = [] { Raise("dies"); };
    thread.Start();
    Sleep(20); // until the thread has ended
    thread.Flush();
    EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
}

TEST(MEngineThread, TableTakes62EventsAndWithoutMemoryOrRoomTheFunctorStaysTheCallers)
{
    ScriptedThread thread;
    const PlatformEvent last(EventReset::Automatic);
    Gate served, unset;
    MCallbackFunctorPtr functor = FunctorFor([&] { served.Open(); });
    const auto add = [&] {
        thread.AddEvent(last, functor.get());
        functor.release();
    };
    for (int i = 0; i < 61; ++i)
        thread.AddEvent(unset.event, FunctorFor([] {}));
    ForEachFailingAllocation(AllocationFailure::Throws, add,
                             [&](ShortageOutcome) { EXPECT_TRUE(functor); });
    EXPECT_EQ("MEngineThread.AddEvent:TooManyWaitableEvents", Raised(add));
    thread.Start();
    SetEvent(last);
    served.Pass(); // handles and functors stand side by side
}
