#pragma once

#include "engine/MCommandSynchronous.h"
#include "engine/MDesyncEvent.h"
#include "engine/MEngineThread.h"

#include <functional>
#include <memory>
#include <string>

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
    Action onError = [] {};
};

/// An engine thread that does what a test tells it, its inside open.
class ScriptedThread : public MEngineThread
{
public:
    explicit ScriptedThread(IThreadErrorHandler* handler = nullptr) : MEngineThread(handler) {}
    ~ScriptedThread() override { ForceStop(); }

    using MEngineThread::AddEvent;
    using MEngineThread::ForceStop;
    using MEngineThread::IsStopRequested;
    using MEngineThread::IsThreadActive;
    using MEngineThread::SignalThreadStarted;

    /// Calls `action`, which must outlive this, whenever `event` is set.
    void Serve(HANDLE event, const Action& action);

    Action onStart = [this] { SignalThreadStarted(); };
    Action onFlush = [] {};
    Action onStop = [] {};

private:
    void ThreadFunction() override;
    void OnFlush() override { onFlush(); }
    void OnStop() override { onStop(); }
};

/// A functor and an event that call `action`, which they do not own.
MCallbackFunctorPtr FunctorFor(const Action& action);
MDesyncEvent* NewEvent(const Action& action);

/// A command that calls `action`; what it raises goes into `slot`.
std::auto_ptr<MCommandSynchronous> NewCommand(const Action& action,
                                              const MExceptionSlot& slot = MExceptionSlot());

/// A slot with an empty exception.
MExceptionSlot NewSlot();

/// Raises an `MException` with the Code `code`.
[[noreturn]] void Raise(const wchar_t* code);
