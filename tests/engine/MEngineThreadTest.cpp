#include "engine/MEngineThread.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

const char diedInFlush[] = "MEngineThread.Flush:ThreadExitedUnexpectedly";

/// An event of `thread` that calls `body`.
struct ServedEvent : PlatformEvent {
    template <class Body>
    ServedEvent(ScriptedThread& thread, Body body) : PlatformEvent(EventReset::Automatic)
    {
        MCallbackFunctorPtr functor = FunctorFor(body);
        thread.AddEvent(*this, functor.get());
        functor.release();
    }
};

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
        thread.Start();
        EXPECT_EQ("MEngineThread.Start:AlreadyRunning", Raised([&] { thread.Start(); }));
        EXPECT_FALSE(thread.IsStopRequested());
        thread.Flush();
        EXPECT_EQ("flush ", calls);
        thread.Stop();
        EXPECT_EQ("flush stop ", calls);
        EXPECT_TRUE(thread.IsStopRequested());
        EXPECT_FALSE(thread.IsThreadActive());
        calls.clear();
    }
    EXPECT_EQ("", thread.failures);
}

TEST(MEngineThread, StopOrFlushFromItsOwnThreadEndsTheThreadAndLeavesItRunning)
{
    for (bool stops : {true, false}) {
        ScriptedThread thread;
        ServedEvent event(thread, [&, stops] { stops ? thread.Stop() : thread.Flush(); });
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

TEST(MEngineThread, BodyThatFailsBeforeTheSignalFailsStart)
{
    ScriptedThread thread;
    const Action works = thread.onStart;
    thread.onStart = [] { Raise(L"NoSetup"); };
    EXPECT_EQ("MEngineThread.Start:ThreadExitedUnexpectedly", Raised([&] { thread.Start(); }));
    EXPECT_EQ("NoSetup;", thread.failures);
    thread.onStart = works;
    thread.Start();
    thread.Stop();
}

// The request of a flush that failed is served by the next thread, ahead of everything else, and
// what that leaves set satisfies the next flush at once.
TEST(MEngineThread, ThreadThatDiesAtOnceHasStartedAndLeavesItsFlushToTheNext)
{
    ScriptedThread thread;
    std::string calls;
    Gate blocked;
    Gate go;
    ServedEvent early(thread, [&] { calls += "early "; });
    ServedEvent late(thread, [&] {
        calls += "late";
        blocked.Open();
        go.Pass();
    });
    thread.onFlush = [&] { calls += "flush "; };
    const Action works = thread.onStart;
    thread.onStart = [&] {
        thread.SignalThreadStarted();
        Raise(L"dies");
    };
    for (int life = 0; life < 20; ++life) {
        thread.Start();
        EXPECT_EQ(diedInFlush, Raised([&] { thread.Flush(); }));
        thread.Stop();
    }

    SetEvent(late);
    SetEvent(early);
    thread.onStart = works;
    thread.Start();
    blocked.Pass();
    thread.Flush(); // though the thread is held up
    EXPECT_EQ("flush early late", calls);
    go.Open();
}

TEST(MEngineThread, TableTakes62EventsOfASubclass)
{
    ScriptedThread thread;
    Gate served;
    PlatformEvent unset(EventReset::Automatic);
    for (int i = 0; i < 61; ++i)
        thread.AddEvent(unset, FunctorFor([] {}).release());
    ServedEvent last(thread, [&] { served.Open(); });
    const MCallbackFunctorPtr stillOurs = FunctorFor([] {});
    EXPECT_EQ("MEngineThread.AddEvent:TooManyWaitableEvents",
              Raised([&] { thread.AddEvent(unset, stillOurs.get()); }));
    thread.Start();
    SetEvent(last);
    served.Pass();
}

TEST(MEngineThread, WaitThatFailsEndsTheThreadWithItsReason)
{
    const HANDLE closed = reinterpret_cast<HANDLE>(0x7FFFFFF0);
    const HANDLE abandoned = CreateMutexW(nullptr, FALSE, nullptr);
    RunOnThreads(1, [=](int) { WaitForSingleObject(abandoned, INFINITE); });
    const struct {
        HANDLE handle;
        const char* failure;
    } cases[] = {{closed, "MEngineThread.WaitForEvents:WaitFailed winErrorCode=6;"},
                 {abandoned, "MEngineThread.WaitForEvents:Abandoned status=130;"}};
    for (const auto& example : cases) {
        ScriptedThread thread;
        thread.AddEvent(example.handle, FunctorFor([] {}).release());
        thread.Start();
        thread.failed.Pass();
        EXPECT_EQ(example.failure, thread.failures);
    }
    CloseHandle(abandoned);
}

TEST(MEngineThread, FailedStopCanBeTriedAgainUntilForceStopGivesUp)
{
    ScriptedThread thread;
    DWORD threadId = 0;
    thread.onStart = [&] {
        threadId = GetCurrentThreadId();
        thread.SignalThreadStarted();
    };
    thread.Start();
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

TEST(MEngineThread, WithoutMemoryNoEventIsAddedAndTheFunctorStaysTheCallers)
{
    ScriptedThread thread;
    PlatformEvent event(EventReset::Automatic);
    MCallbackFunctorPtr functor = FunctorFor([] {});
    ForEachFailingAllocation(
        AllocationFailure::Throws,
        [&] {
            thread.AddEvent(event, functor.get());
            functor.release();
        },
        [&](ShortageOutcome) { EXPECT_TRUE(functor); });
    EXPECT_FALSE(functor);

    // Handles and functors still stand side by side.
    Gate served;
    ServedEvent next(thread, [&] { served.Open(); });
    thread.Start();
    SetEvent(next);
    served.Pass();
}

TEST(MEngineThread, WithoutMemoryToBuildItNothingStaysBehind)
{
    ExpectUnwoundWithoutMemory([] { ScriptedThread unfinished; });
}
