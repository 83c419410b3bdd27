#include "engine/MEngineThread.h"

#include "tests/engine/EngineFixtures.h"

namespace
{

const char diedInFlush[] = "MEngineThread.Flush:ThreadExitedUnexpectedly";

/// An event of `thread` that calls `body`.
struct ServedEvent : PlatformEvent {
    template <class Body>
    ServedEvent(ScriptedThread& thread, Body body) : PlatformEvent(EventReset::Automatic)
    {
        thread.AddEvent(*this, FunctorFor(body).release());
    }
};

/// Starts `thread`, which is to open `served` when `event` is set.
void ExpectServed(ScriptedThread& thread, HANDLE event, Gate& served)
{
    thread.Start();
    SetEvent(event);
    served.Pass();
}

} // namespace

TEST(MEngineThread, EachLifeServesItsFlushesAndItsStopOnce)
{
    ScriptedThread thread;
    std::string calls;
    thread.onFlush = [&] { calls += "flush "; };
    thread.onStop = [&] { calls += "stop "; };
    thread.Stop();
    thread.Flush();
    thread.ForceStop();
    for (int life = 0; life < 2; ++life) {
        calls.clear();
        thread.Start();
        EXPECT_EQ("MEngineThread.Start:AlreadyRunning", Raised([&] { thread.Start(); }));
        thread.Flush();
        EXPECT_EQ("flush ", calls);
        thread.Stop();
        EXPECT_EQ("flush stop ", calls);
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

TEST(MEngineThread, StopOrFlushFromItsOwnThreadEndsTheThreadAndLeavesItRunning)
{
    for (bool stops : {true, false}) {
        ScriptedThread thread;
        const ServedEvent event(thread, [&] { stops ? thread.Stop() : thread.Flush(); });
        ExpectServed(thread, event, thread.failed);
        EXPECT_EQ(stops ? "MEngineThread.Stop:CannotStopSelf;"
                        : "MEngineThread.Flush:CannotFlushSelf;",
                  thread.failures);
        EXPECT_TRUE(thread.IsThreadActive());
        EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
        thread.Stop();
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

// The request of a flush that failed is served by the next thread, ahead of everything else, and
// what that leaves set satisfies the next flush at once.
TEST(MEngineThread, ThreadThatDiesAtOnceHasStartedAndLeavesItsFlushToTheNext)
{
    ScriptedThread thread;
    std::string calls;
    Gate blocked, go;
    const ServedEvent early(thread, [&] { calls += "early "; });
    const ServedEvent late(thread, [&] {
        calls += "late";
        blocked.Open();
        go.Pass();
    });
    thread.onFlush = [&] { calls += "flush "; };
    const Action works = thread.onStart;
    thread.onStart = [&] {
        works();
        Raise("dies");
    };
    for (int life = 0; life < 20; ++life) {
        thread.Start();
        EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
        thread.Stop();
    }

    SetEvent(early);
    thread.onStart = works;
    ExpectServed(thread, late, blocked);
    thread.Flush(); // though the thread is held up
    EXPECT_EQ("flush early late", calls);
    go.Open();
}

TEST(MEngineThread, TableTakes62EventsAndWithoutMemoryOrRoomTheFunctorStaysTheCallers)
{
    ScriptedThread thread;
    const PlatformEvent unset(EventReset::Automatic);
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
    const ServedEvent last(thread, [&] { served.Open(); });
    const MCallbackFunctorPtr stillOurs = FunctorFor([] {});
    EXPECT_EQ("MEngineThread.AddEvent:TooManyWaitableEvents",
              Raised([&] { thread.AddEvent(unset, stillOurs.get()); }));
    ExpectServed(thread, last, served); // handles and functors stand side by side
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

TEST(MEngineThread, FailedStopCanBeTriedAgainUntilForceStopGivesUp)
{
    ScriptedThread thread;
    DWORD threadId = 0;
    thread.onFlush = [&] { threadId = GetCurrentThreadId(); };
    thread.Start();
    thread.Flush();
    const std::vector<HANDLE> handles = ListHandles();
    const HANDLE ours = OpenThread(SYNCHRONIZE, FALSE, threadId);
    for (HANDLE handle : handles)
        if (GetThreadId(handle) == threadId)
            CloseHandle(handle);
    EXPECT_EQ("MEngineThread.Flush:WaitFailed winErrorCode=6", Raised([&] { thread.Flush(); }));
    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_EQ("MEngineThread.Stop:WaitFailed winErrorCode=6", Raised([&] { thread.Stop(); }));
    EXPECT_TRUE(thread.IsThreadActive());
    thread.ForceStop();
    EXPECT_FALSE(thread.IsThreadActive());
    WaitForSingleObject(ours, INFINITE);
    CloseHandle(ours);
}

TEST(MEngineThread, WithoutMemoryToBuildItNothingStaysBehind)
{
    ExpectUnwoundWithoutMemory([] { ScriptedThread unfinished; });
}
