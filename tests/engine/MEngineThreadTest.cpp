#include "engine/MEngineThread.h"

#include "tests/engine/EngineFixtures.h"

const char diedInFlush[] = "MEngineThread.Flush:ThreadExitedUnexpectedly";

TEST(MEngineThread, EachLifeServesItsFlushesAndItsStopOnce)
{
    ScriptedThread thread;
    std::string calls;
    const Action works = thread.onStart;
    thread.onStart = [&] {
        Sleep(20);
        calls = "start ";
        works();
    };
    thread.onFlush = [&] { calls += "flush "; };
    thread.onStop = [&] { calls += "stop "; };
    thread.Stop();
    thread.Flush();
    thread.ForceStop();
    for (int life = 0; life < 2; ++life) {
        thread.Start();
        EXPECT_EQ("start ", calls);
        EXPECT_EQ("MEngineThread.Start:AlreadyRunning", Raised([&] { thread.Start(); }));
        thread.Flush();
        EXPECT_EQ("start flush ", calls);
        thread.Stop();
        EXPECT_EQ("start flush stop ", calls);
        calls.clear();
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

TEST(MEngineThread, StopOrFlushFromItsOwnThreadEndsTheThreadAndLeavesItRunning)
{
    for (bool stops : {true, false}) {
        ScriptedThread thread;
        const PlatformEvent event(EventReset::Automatic);
        const auto action = [&] { stops ? thread.Stop() : thread.Flush(); };
        thread.AddEvent(event, FunctorFor(action).release());
        thread.Start();
        SetEvent(event);
        thread.failed.Pass();
        EXPECT_EQ(stops ? "MEngineThread.Stop:CannotStopSelf;"
                        : "MEngineThread.Flush:CannotFlushSelf;",
                  thread.failures);
        EXPECT_TRUE(thread.IsThreadActive());
        EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
        thread.Stop();
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

// The request of a flush that failed is served by the next thread, ahead of a stop, and what that
// leaves set satisfies the next flush at once, alive or not.
TEST(MEngineThread, ThreadThatDiesAtOnceHasStartedAndLeavesItsFlushToTheNext)
{
    ScriptedThread thread;
    std::string calls;
    thread.onFlush = [&] { calls += "flush "; };
    thread.onStop = [&] { calls += "stop "; };
    thread.Start();
    thread.Stop();
    const Action works = thread.onStart;
    const Action dies = [&] {
        works();
        Raise("dies");
    };
    thread.onStart = dies;
    thread.Start();
    EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
    thread.Stop();

    thread.onStart = [&] {
        works();
        while (!thread.IsStopRequested())
            Sleep(1);
    };
    thread.Start();
    thread.Stop();
    EXPECT_EQ("stop flush stop ", calls);

    thread.onStart = dies;
    thread.Start();
    Sleep(20); // until the thread has ended
    thread.Flush();
    EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
}

TEST(MEngineThread, TableTakes62EventsAndWithoutMemoryOrRoomTheFunctorStaysTheCallers)
{
    ScriptedThread thread;
    const PlatformEvent unset(EventReset::Automatic), last(EventReset::Automatic);
    for (int i = 0; i < 61; ++i) {
        MCallbackFunctorPtr functor = FunctorFor([] {});
        const auto add = [&] {
            thread.AddEvent(unset, functor.get());
            functor.release();
        };
        ForEachFailingAllocation(AllocationFailure::Throws, add,
                                 [&](ShortageOutcome) { EXPECT_TRUE(functor); });
    }
    Gate served;
    thread.AddEvent(last, FunctorFor([&] { served.Open(); }).release());
    const MCallbackFunctorPtr stillOurs = FunctorFor([] {});
    EXPECT_EQ("MEngineThread.AddEvent:TooManyWaitableEvents",
              Raised([&] { thread.AddEvent(unset, stillOurs.get()); }));
    thread.Start();
    SetEvent(last);
    served.Pass(); // handles and functors stand side by side
}

TEST(MEngineThread, WaitThatFailsEndsTheThreadWithItsReason)
{
    const HANDLE closed = reinterpret_cast<HANDLE>(0x7FFFFFF0);
    const HANDLE abandoned = CreateMutexW(nullptr, FALSE, nullptr);
    RunOnThreads(1, [=](int) { WaitForSingleObject(abandoned, INFINITE); });
    for (HANDLE handle : {closed, abandoned}) {
        ScriptedThread thread;
        thread.AddEvent(handle, FunctorFor([] {}).release());
        thread.Start();
        thread.failed.Pass();
        EXPECT_EQ(handle == closed ? "MEngineThread.WaitForEvents:WaitFailed winErrorCode=6;"
                                   : "MEngineThread.WaitForEvents:Abandoned status=130;",
                  thread.failures);
    }
    CloseHandle(abandoned);
}

TEST(MEngineThread, ForceStopWaitsForNobodyWhileStartingAndGivesUpWhenTheStopFails)
{
    for (int stops : {0, 2}) {
        ScriptedThread thread;
        Gate go;
        HANDLE ended = nullptr;
        const Action works = thread.onStart;
        thread.onStart = [&] {
            go.Pass();
            ended = OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId());
            works();
        };
        std::thread starter([&] { thread.Start(); });
        while (!thread.IsThreadActive())
            Sleep(1);
        Sleep(20); // until it is waited for
        thread.ForceStop();
        EXPECT_FALSE(thread.IsThreadActive());
        go.Open();
        starter.join(); // the thread runs, its handle lost

        EXPECT_EQ("MEngineThread.Flush:WaitFailed winErrorCode=6", Raised([&] { thread.Flush(); }));
        for (int stop = 0; stop < stops; ++stop)
            EXPECT_EQ("MEngineThread.Stop:WaitFailed winErrorCode=6",
                      Raised([&] { thread.Stop(); }));
        EXPECT_TRUE(thread.IsThreadActive());
        thread.ForceStop();
        EXPECT_FALSE(thread.IsThreadActive());
        WaitForSingleObject(ended, INFINITE);
        CloseHandle(ended);
    }
}
