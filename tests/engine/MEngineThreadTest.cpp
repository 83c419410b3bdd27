#include "engine/MEngineThread.h"

#include "diagnostics/MFlowLogger.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/Allocations.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/ProcessHandles.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <thread>

#include <windows.h>

namespace
{

/// The states that `thread` went through since it was built, as the dump names them.
std::string StatesOf(const MEngineThread& thread)
{
    const std::int64_t construction = -14;
    const std::int64_t stateChange = -25;
    const std::int64_t object =
        static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(&thread));
    std::string states;
    for (const DumpedRecord& record :
         ReadDump(TakeDump(*MFlowLogger::GetInstance()->GetImplementation()))) {
        if (record.numbers[5] != object)
            continue;
        if (record.numbers[0] == construction)
            states.clear();
        if (record.numbers[0] == stateChange)
            states += record.text.substr(18, record.text.find(" in_class") - 17);
    }
    return states;
}

/// Closes every handle of a thread but one of the caller's own, which it gives; waits on the handle
/// that the engine thread object keeps then fail.
HANDLE CloseHandlesOfThread(DWORD threadId)
{
    const std::vector<HANDLE> handles = ListHandles();
    const HANDLE ours = OpenThread(SYNCHRONIZE, FALSE, threadId);
    for (HANDLE handle : handles)
        if (GetThreadId(handle) == threadId)
            CloseHandle(handle);
    return ours;
}

const HANDLE noHandle = reinterpret_cast<HANDLE>(0x7FFFFFF0);

/// A mutex object whose owner has died without giving it back.
HANDLE NewAbandonedMutex()
{
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    std::thread([mutex] { WaitForSingleObject(mutex, INFINITE); }).join();
    return mutex;
}

} // namespace

TEST(MEngineThread, NeverStartedItHasNothingToStop)
{
    ScriptedThread thread;
    thread.Stop();
    thread.Flush();
    EXPECT_EQ("", StatesOf(thread));
    thread.ForceStop();
    EXPECT_EQ("Inactive ", StatesOf(thread));
}

TEST(MEngineThread, StartedAgainItRunsASecondThread)
{
    ScriptedThread thread;
    thread.Start();
    EXPECT_EQ("MEngineThread.Start:AlreadyRunning", Raised([&] { thread.Start(); }));
    EXPECT_FALSE(thread.IsStopRequested());
    thread.Stop();
    EXPECT_TRUE(thread.IsStopRequested());
    thread.Start();
    EXPECT_FALSE(thread.IsStopRequested());
    thread.Stop();
    EXPECT_EQ("Starting Running Stopping Inactive Starting Running Stopping Inactive ",
              StatesOf(thread));
}

TEST(MEngineThread, FlushAndStopReturnWhenTheThreadHasServedThem)
{
    ScriptedThread thread;
    std::string calls;
    thread.onFlush = [&] { calls += "flush "; };
    thread.onStop = [&] { calls += "stop "; };
    thread.Start();
    thread.Flush();
    EXPECT_EQ("flush ", calls);
    thread.Stop();
    thread.Start();
    thread.Stop();
    EXPECT_EQ("stop ", calls.substr(calls.size() - 5));
}

TEST(MEngineThread, StopOrFlushFromItsOwnThreadEndsTheThreadAndLeavesItRunning)
{
    for (bool stops : {true, false}) {
        FailureRecorder recorder;
        ScriptedThread thread(&recorder);
        Gate ended;
        PlatformEvent event(EventReset::Automatic);
        const Action selfCall = [&] { stops ? thread.Stop() : thread.Flush(); };
        recorder.onError = [&] { ended.Open(); };
        thread.Serve(event, selfCall);
        thread.Start();
        SetEvent(event);
        ended.Pass();
        EXPECT_EQ(stops ? "MEngineThread.Stop:CannotStopSelf;"
                        : "MEngineThread.Flush:CannotFlushSelf;",
                  recorder.failures);
        EXPECT_TRUE(thread.IsThreadActive());
        EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", Raised([&] { thread.Flush(); }));
        thread.Stop();
        EXPECT_FALSE(thread.IsThreadActive());
    }
}

TEST(MEngineThread, BodyThatFailsBeforeTheSignalFailsStart)
{
    FailureRecorder recorder;
    ScriptedThread thread(&recorder);
    const DWORD caller = GetCurrentThreadId();
    const auto failOnTheNewThread = [&] {
        EXPECT_NE(caller, GetCurrentThreadId());
        Raise(L"NoSetup");
    };
    const Action works = thread.onStart;
    thread.onStart = failOnTheNewThread;
    EXPECT_EQ("MEngineThread.Start:ThreadExitedUnexpectedly", Raised([&] { thread.Start(); }));
    EXPECT_EQ("NoSetup;", recorder.failures);
    EXPECT_EQ("Starting Inactive ", StatesOf(thread));
    thread.onStart = works;
    thread.Start();
    thread.Stop();
}

TEST(MEngineThread, ThreadThatStartsAndDiesAtOnceHasStarted)
{
    ScriptedThread thread;
    thread.onStart = [&] {
        thread.SignalThreadStarted();
        Raise(L"nobody is told");
    };
    thread.Start();
    EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", Raised([&] { thread.Flush(); }));
    thread.Stop();
    EXPECT_FALSE(thread.IsThreadActive());
}

TEST(MEngineThread, OnFlushThatRaisesFailsTheFlush)
{
    FailureRecorder recorder;
    ScriptedThread thread(&recorder);
    thread.onFlush = [] { Raise(L"Clogged"); };
    thread.Start();
    EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", Raised([&] { thread.Flush(); }));
    EXPECT_EQ("Clogged;", recorder.failures);
}

// The request of a flush that failed is served by the next thread, ahead of everything else, and
// what that leaves set satisfies the next flush at once.
TEST(MEngineThread, LeftOverFlushIsServedFirstAndAnswersTheNext)
{
    ScriptedThread thread;
    std::string calls;
    Gate blocked;
    Gate go;
    PlatformEvent early(EventReset::Automatic);
    PlatformEvent late(EventReset::Automatic);
    const Action onEarly = [&] { calls += "early "; };
    const Action onLate = [&] {
        calls += "late";
        blocked.Open();
        go.Pass();
    };
    thread.Serve(early, onEarly);
    thread.Serve(late, onLate);
    thread.onFlush = [&] { calls += "flush "; };
    const Action works = thread.onStart;
    thread.onStart = [&] {
        thread.SignalThreadStarted();
        Raise(L"dies");
    };
    thread.Start();
    while (Raised([&] { thread.Flush(); }).empty())
        ;
    thread.Stop();

    SetEvent(late);
    SetEvent(early);
    thread.onStart = works;
    thread.Start();
    blocked.Pass();
    EXPECT_EQ("flush early late", calls);
    thread.Flush(); // though the thread is held up
    EXPECT_EQ("flush early late", calls);
    go.Open();
}

TEST(MEngineThread, TableTakes62EventsOfASubclass)
{
    ScriptedThread thread;
    const Action nothing = [] {};
    Gate last;
    const Action open = [&] { last.Open(); };
    PlatformEvent unset(EventReset::Automatic);
    PlatformEvent event(EventReset::Automatic);
    for (int i = 0; i < 61; ++i)
        thread.Serve(unset, nothing);
    thread.Serve(event, open);
    const MCallbackFunctorPtr stillOurs = FunctorFor(nothing);
    EXPECT_EQ("MEngineThread.AddEvent:TooManyWaitableEvents",
              Raised([&] { thread.AddEvent(unset, stillOurs.get()); }));
    thread.Start();
    SetEvent(event);
    last.Pass();
}

TEST(MEngineThread, WaitThatFailsEndsTheThreadWithItsReason)
{
    const HANDLE abandoned = NewAbandonedMutex();
    const struct {
        HANDLE handle;
        const char* failure;
    } cases[] = {{noHandle, "MEngineThread.WaitForEvents:WaitFailed winErrorCode=6;"},
                 {abandoned, "MEngineThread.WaitForEvents:Abandoned status=130;"}};
    for (const auto& example : cases) {
        FailureRecorder recorder;
        ScriptedThread thread(&recorder);
        const Action nothing = [] {};
        Gate ended;
        recorder.onError = [&] { ended.Open(); };
        thread.Serve(example.handle, nothing);
        thread.Start();
        ended.Pass();
        EXPECT_EQ(example.failure, recorder.failures);
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
    const HANDLE ours = CloseHandlesOfThread(threadId);
    EXPECT_EQ("MEngineThread.Flush:WaitFailed winErrorCode=6", Raised([&] { thread.Flush(); }));
    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_EQ("MEngineThread.Stop:WaitFailed winErrorCode=6", Raised([&] { thread.Stop(); }));
    EXPECT_EQ("Starting Running Stopping Stopping ", StatesOf(thread));
    thread.ForceStop();
    EXPECT_FALSE(thread.IsThreadActive());
    WaitForSingleObject(ours, INFINITE);
    CloseHandle(ours);
}

TEST(MEngineThread, WithoutMemoryNoEventIsAddedAndTheFunctorStaysTheCallers)
{
    const Action nothing = [] {};
    PlatformEvent event(EventReset::Automatic);
    ScriptedThread thread;
    MCallbackFunctorPtr functor = FunctorFor(nothing);
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
    PlatformEvent next(EventReset::Automatic);
    const Action open = [&] { served.Open(); };
    thread.Serve(next, open);
    thread.Start();
    SetEvent(next);
    served.Pass();
}

TEST(MEngineThread, WithoutMemoryToBuildItNothingStaysBehind)
{
    const auto build = [] { ScriptedThread unfinished; };
    build();
    const ExpectSameHandles handles;
    ForEachFailingAllocation(AllocationFailure::Throws, build, [](ShortageOutcome outcome) {
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome);
    });
}
