#pragma once

#include "engine/MCommandSynchronous.h"
#include "engine/MDesyncEvent.h"
#include "engine/MEngineThread.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"
#include "tests/support/Raised.h"

#include <functional>
#include <thread>

#include <windows.h>

typedef std::function<void()> Action;

/// Holds threads up until it is opened.
struct Gate {
    void Open() { SetEvent(event); }
    void Pass() { WaitForSingleObject(event, INFINITE); }

    PlatformEvent event{EventReset::Manual};
};

/// Keeps what ended an engine thread.
struct FailureRecorder : IThreadErrorHandler {
    void OnSpontaneousError(const MException& exception) override;
    void OnUnhandledException(_EXCEPTION_POINTERS*) override {}

    std::string failures; ///< each as `FailureText` has it, with a semicolon behind
    Gate failed;          ///< opened by the first
};

/// An engine thread that does what a test tells it, its inside open.
class ScriptedThread : public FailureRecorder, public MEngineThread
{
public:
    ScriptedThread() : MEngineThread(this) {}
    ~ScriptedThread() override { ForceStop(); }

    using MEngineThread::AddEvent;
    using MEngineThread::ForceStop;
    using MEngineThread::IsThreadActive;

    Action onStart = [this] { SignalThreadStarted(); };
    Action onFlush = [] {};
    Action onStop = [] {};

private:
    void ThreadFunction() override;
    void OnFlush() override { onFlush(); }
    void OnStop() override { onStop(); }
};

/// A functor that calls `body`, a lambda that captures plain data only: like an event, a functor is
/// freed without a destructor being run.
template <class Body>
MCallbackFunctorPtr FunctorFor(Body body)
{
    struct Functor final : MCallbackFunctor {
        explicit Functor(Body body) : body(body) {}
        void Invoke() override { body(); }
        Body body;
    };
    return MCallbackFunctorPtr(new Functor(body));
}

/// An event that calls `body`, a lambda of that kind too.
template <class Body>
MDesyncEvent* NewEvent(Body body)
{
    struct Event final : MDesyncEvent {
        explicit Event(Body body) : body(body) {}
        void Fire() override { body(); }
        Body body;
    };
    return new Event(body);
}

/// A command that calls `action`; what it raises goes into `slot`.
std::auto_ptr<MCommandSynchronous> NewCommand(const Action& action,
                                              const MExceptionSlot& slot = MExceptionSlot());

/// A slot with an empty exception.
MExceptionSlot NewSlot();

/// Raises an `MException` that holds "cause", and then an error with the Code `code`.
[[noreturn]] void Raise(const std::string& code);

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
    FailingAllocation failing(how, 1);
    const ShortageOutcome outcome = RunShortOfMemory(operation);
    failing.Disarm();
    EXPECT_EQ(how == AllocationFailure::ThrowsForGood ? ShortageOutcome::RaisedBadAlloc
                                                      : ShortageOutcome::RaisedMException,
              outcome);
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
