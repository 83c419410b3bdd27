#include "engine/MEngineThread.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/engine/Imports.h"

#include <future>

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

TEST(MEngineThread, CallOnTheThreadItselfIsRefusedWithoutWaitingAndEndsIt)
{
    const std::pair<void (ScriptedThread::*)(), const char*> cases[] = {
        {&ScriptedThread::Stop, "MEngineThread.Stop:CannotStopSelf;"},
        {&ScriptedThread::Flush, "MEngineThread.Flush:CannotFlushSelf;"}};
    for (const auto& refused : cases)
        for (const char* when : {"start", "flush"}) { // while another thread holds the lock
            ScriptedThread thread;
            thread.on[when] = [&] { (thread.*refused.first)(); };
            Raised([&] { thread.Start(); });
            Raised([&] { thread.Flush(); });
            EXPECT_EQ(refused.second, thread.failures);
            thread.Stop();
        }
}

TEST(MEngineThread, StartFlushAndStopExcludeOneAnother)
{
    const std::pair<void (ScriptedThread::*)(), Import> operations[] = {
        {&ScriptedThread::Start, Import::WaitForMultipleObjects},
        {&ScriptedThread::Flush, Import::WaitForMultipleObjects},
        {&ScriptedThread::Stop, Import::WaitForSingleObject}};
    for (const auto& first : operations)
        for (const auto& second : operations) {
            ScriptedThread thread;
            if (first.first != &ScriptedThread::Start)
                thread.Start();
            std::future<std::string> other;
            const Action ahead = [&] {
                other = std::async(std::launch::async,
                                   [&] { return Raised([&] { (thread.*second.first)(); }); });
                EXPECT_EQ(std::future_status::timeout,
                          other.wait_for(std::chrono::milliseconds(5)));
            };
            DoAheadOfNext(first.second, ahead);
            (thread.*first.first)();
            other.wait();
        }
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
