#pragma once

#include "engine/MCommandSynchronous.h"
#include "engine/MEngineThread.h"
#include "engine/MThreadSafeFifo.h"

#include <cstdint>
#include <memory>

class MCommand;

/// Executes commands one at a time, in order of arrival, on a thread of its own, while their
/// callers wait.
///
///     MExceptionSlot slot(std::auto_ptr<MException>(new MException));
///     processor.ExecuteSynchronously(
///         std::auto_ptr<MCommandSynchronous>(new CountCommand(slot, &result)));
///     if (slot->GetErrorCount() != 0)
///         ... the last entry is the failure ...
///
/// `Start`, `Stop` and `Flush` come from `MEngineThread`. `Flush` returns when everything queued
/// before it has been executed. `Stop` executes what is queued, drops what it could not, wakes
/// those callers, and returns when the thread has ended; from then on the processor refuses
/// commands for good, even if it is started again.
///
/// The owner calls `Stop` before destroying a processor.
class MCommandProcessor : public MEngineThread
{
public:
    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    /// Each functor may be null and is owned from here on. `startFunctor` runs on the processor
    /// thread before `Start` returns, `stopFunctor` as its last act, failing or not, `idleFunctor`
    /// whenever `idleTimeoutMs` passed without any event; a time-out of 0 means never.
    MCommandProcessor(IThreadErrorHandler* errorHandler, MCallbackFunctor* startFunctor,
                      MCallbackFunctor* stopFunctor, MCallbackFunctor* idleFunctor,
                      std::uint32_t idleTimeoutMs);
    ~MCommandProcessor() override;

    /// Queues the command and returns when it has run. From any number of threads, but not from
    /// the processor thread, where it would wait for itself.
    ///
    /// A failure of the command goes into its slot, not out of here. Raises "ProcessorStopped" when
    /// the processor has been stopped, "CommandProcessingAborted" when it stopped before the
    /// command ran, "Abandoned", or "WaitFailed" with "winErrorCode". The processor owns the
    /// command from the moment it is queued; whatever happens, the caller is rid of it.
    void ExecuteSynchronously(std::auto_ptr<MCommandSynchronous> command);

    /// Whether the processor has been stopped. Raises "ErrorAccessingEvent" with "winErrorCode".
    bool IsAborted();

protected:
    void ThreadFunction() override;

    /// Runs the queue out.
    void OnFlush() override;
    void OnStop() override;

private:
    MCommandProcessor(IThreadErrorHandler* errorHandler, MCallbackFunctorPtr startFunctor,
                      MCallbackFunctorPtr stopFunctor, MCallbackFunctorPtr idleFunctor,
                      std::uint32_t idleTimeoutMs);

    void Abort();
    void OnCommandQueued();
    bool ExecuteNext();
    void RunLoop();
    void RunIdleFunctor();
    void RunStopFunctor();
    void RunStopFunctorAfterFailure();

    MCallbackFunctorPtr startFunctor;
    MCallbackFunctorPtr stopFunctor;
    MCallbackFunctorPtr idleFunctor;
    std::uint32_t idleTimeoutMs;
    std::unique_ptr<MThreadSafeFifo<MCommand*, MCommand*>> commandQueue;
    PlatformEvent abortEvent; // set once and never cleared
};
