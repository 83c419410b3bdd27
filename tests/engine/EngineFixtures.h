#pragma once

#include "engine/MCommandSynchronous.h"
#include "engine/MDesyncEvent.h"
#include "engine/MEngineThread.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"

#include <functional>
#include <string>
#include <thread>
#include <type_traits>

typedef std::function<void()> Action;

/// Holds threads up until it is opened.
class Gate
{
public:
    void Open();
    void Pass();

private:
    PlatformEvent event{EventReset::Manual};
};

/// Keeps what ended an engine thread.
class FailureRecorder : public IThreadErrorHandler
{
public:
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
    using MEngineThread::IsStopRequested;
    using MEngineThread::IsThreadActive;
    using MEngineThread::SignalThreadStarted;

    Action onStart = [this] { SignalThreadStarted(); };
    Action onFlush = [] {};
    Action onStop = [] {};

private:
    void ThreadFunction() override;
    void OnFlush() override { onFlush(); }
    void OnStop() override { onStop(); }
};

// Functors and events are freed without a destructor being run, so they take lambdas that capture
// plain data only.

template <class Body>
MCallbackFunctorPtr FunctorFor(Body body)
{
    static_assert(std::is_trivially_destructible<Body>::value, "would never be destroyed");
    struct Functor final : MCallbackFunctor {
        explicit Functor(Body body) : body(body) {}
        void Invoke() override { body(); }
        Body body;
    };
    return MCallbackFunctorPtr(new Functor(body));
}

template <class Body>
MDesyncEvent* NewEvent(Body body)
{
    static_assert(std::is_trivially_destructible<Body>::value, "would never be destroyed");
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

/// Raises an `MException` with the Code `code`.
[[noreturn]] void Raise(const wchar_t* code);

/// Runs `body` on `count` threads at once, with the thread's number.
template <class Body>
void RunOnThreads(int count, Body body)
{
    std::vector<std::thread> threads;
    for (int number = 0; number < count; ++number)
        threads.emplace_back([&body, number] { body(number); });
    for (std::thread& thread : threads)
        thread.join();
}

/// The ways in which allocations fail that go through `MakeOrRaise`. The last leaves no memory for
/// the `MException` either.
const AllocationFailure allocationFailures[] = {
    AllocationFailure::Throws, AllocationFailure::AnswersNull, AllocationFailure::ThrowsForGood};

/// Runs `operation`, its first allocation going through `MakeOrRaise` and failing.
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
