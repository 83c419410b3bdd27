#pragma once

#include "engine/MCommandSynchronous.h"
#include "engine/MEngineThread.h"
#include "engine/MThreadSafeFifo.h"

#include <atomic>
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
/// `Start`, `Stop` and `Flush` come from `MEngineThread`. `Flush` executes what is in the queue
/// when the processor thread comes to it, and no more. `Stop` does the same once, drops what has
/// arrived meanwhile or could not be executed, wakes those callers, and returns when the thread has
/// ended; from then on the processor refuses commands for good, even if it is started again, and
/// executes none that it still finds. So both take as long as what was queued, whoever goes on
/// calling.
///
/// The owner calls `Stop` before destroying a processor.
class MCommandProcessor : public MEngineThread
{
public:
    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    /// Each functor may be null and is owned from here on. `startFunctor` runs on the processor
    /// thread before `Start` returns, `stopFunctor` as its last act, failing or not, and once even
    /// if it fails itself, `idleFunctor` whenever `idleTimeoutMs` passed without any event; a
    /// time-out of 0 means never.
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

    /// Queues the command and returns at once; nobody waits for it. Any thread. The command says in
    /// its destructor what became of it: it is deleted when it has run, and unexecuted when the
    /// processor is stopped or destroyed before, or its thread dies. What leaves its
    /// `ExecuteGenericCommand` ends the processor thread. False, with the command deleted or about
    /// to be, when the processor has been stopped or its thread has died. Raises an
    /// `MErrorOutOfMemory` in an `MException`; the command is gone then.
    bool Queue(std::unique_ptr<MCommand> command);

    /// Whether the processor thread has died of a failure, until the next `Start`. What was queued
    /// by `ExecuteSynchronously` is executed after that; its callers wait.
    bool HasDied() const { return died; }

    /// Whether the processor has been stopped. Raises "ErrorAccessingEvent" with "winErrorCode".
    bool IsAborted();

protected:
    void ThreadFunction() override;

    /// Executes what is in the queue at its beginning.
    void OnFlush() override;
    void OnStop() override;

private:
    struct Locations;

    MCommandProcessor(IThreadErrorHandler* errorHandler, MCallbackFunctorPtr startFunctor,
                      MCallbackFunctorPtr stopFunctor, MCallbackFunctorPtr idleFunctor,
                      std::uint32_t idleTimeoutMs);

    void Abort();
    void DropQueued();
    void DropUnawaited();
    void OnCommandQueued();
    void ExecuteNext();
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
    bool aborted;             // the same for the processor thread, without asking the system
    std::atomic<bool> died;
};
