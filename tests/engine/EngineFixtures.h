#pragma once

#include "engine/MEngineThread.h"
#include "tests/support/Allocations.h"
#include "tests/support/EngineWork.h"
#include "tests/support/ProcessHandles.h"
#include "tests/support/Raised.h"

#include <thread>

#include <windows.h>

/// Holds threads up until it is opened.
struct Gate {
    void Open() { SetEvent(event); }
    void Pass() { WaitForSingleObject(event, INFINITE); }

    PlatformEvent event{EventReset::Manual};
};

/// Keeps what ended an engine thread.
struct FailureRecorder : IThreadErrorHandler {
    void OnSpontaneousError(const MException& exception) override
    {
        failures += FailureText(exception) + ";";
        failed.Open();
    }
    void OnUnhandledException(_EXCEPTION_POINTERS*) override {}

    std::string failures;
    Gate failed; ///< opened by the first
};

/// An engine thread that does what a test tells it, its inside open.
class ScriptedThread : public FailureRecorder, public MEngineThread
{
public:
    ScriptedThread() : MEngineThread(this) {}
    ~ScriptedThread() override { ForceStop(); }

    using MEngineThread::AddEvent;
    using MEngineThread::ForceStop;
    using MEngineThread::IsStopRequested;
    using MEngineThread::IsThreadActive;

    Action onStart = [this] { SignalThreadStarted(); };
    Action onFlush = [] {};
    Action onStop = [] {};

private:
    void ThreadFunction() override
    {
        onStart();
        do
            WaitForEvents(waitForEver);
        while (!IsStopRequested());
        ServeStop();
    }
    void OnFlush() override { onFlush(); }
    void OnStop() override { onStop(); }
};

/// Raises an `MException` that holds "cause", and then an error with the Code `code`.
[[noreturn]] inline void Raise(const std::string& code)
{
    MException exception(MError(L"cause"));
    exception.AddError(MError(std::wstring(code.begin(), code.end()).c_str()));
    throw MException(exception);
}

/// Runs `body` on `count` threads at once, with the thread's number.
template <class Body>
void RunOnThreads(int count, Body body)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back(body, number);
    for (std::thread& thread : threads)
        thread.join();
}

/// Runs `operation`, its first allocation failing, which is to raise an `MException` as long as
/// there is memory for that.
template <class Operation>
void ExpectOutOfMemory(AllocationFailure how, Operation operation)
{
    EXPECT_EQ(how == AllocationFailure::ThrowsForGood ? ShortageOutcome::RaisedBadAlloc
                                                      : ShortageOutcome::RaisedMException,
              RunShortOfMemory(how, 1, operation));
}

/// Expects a construction to leave nothing behind, whichever of its allocations fails.
template <class Build>
void ExpectUnwoundWithoutMemory(Build build)
{
    build();
    const ExpectSameHandles handles;
    ForEachFailingAllocation(AllocationFailure::Throws, build, [](ShortageOutcome outcome) {
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome);
    });
}
