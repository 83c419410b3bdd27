#pragma once

#include "engine/IThreadErrorHandler.h"
#include "engine/MCallbackFunctor.h"
#include "engine/MMutex.h"
#include "engine/PlatformEvent.h"
#include "foundation/NonCopyable.h"

#include <atomic>
#include <cstdint>
#include <vector>

class MFlowLocation;

/// Life cycle of an engine thread. A thread that dies on its own stays "Running" until it is
/// stopped.
enum class EngineThreadState : std::uint32_t { Inactive, Starting, Running, Stopping };

/// A background thread with start, flush and stop handshakes, whose work is to wait on a table of
/// handles and call the functor that belongs to the one that is signalled.
///
/// The table holds up to 64 handles; the lowest signalled index wins, one functor a pass. Index 0
/// is the flush request, index 1 the stop, so a subclass can add 62 of its own. A subclass supplies
/// `ThreadFunction`, which does its set-up, calls `SignalThreadStarted` once, loops on
/// `WaitForEvents` until `IsStopRequested`, serves the stop, and undoes its set-up:
///
///     void Pump::ThreadFunction()
///     {
///         SignalThreadStarted();
///         do
///             WaitForEvents(waitForEver);
///         while (!IsStopRequested());
///         ServeStop();
///     }
///
/// Threads: `Start`, `Stop` and `Flush` may be called from any thread but the engine thread itself;
/// they exclude one another and block until the handshake is done. Events are added before `Start`.
///
/// Bounds: `Flush` waits for the functor in progress and for one `OnFlush`, `Stop` for these and
/// for what `OnStop` and the rest of `ThreadFunction` do; both also for whoever came before them.
///
/// Failure: `Start`, `Stop` and `Flush` raise `MException`s whose Codes begin with
/// "MEngineThread."; "WaitFailed" has the parameter "winErrorCode", "Unexpected" and "Abandoned"
/// have "status". What goes wrong on the engine thread itself goes to the `IThreadErrorHandler`.
///
/// Ownership: stop a thread before destroying it, since the subclass that its functions belong to
/// is gone by the time this destructor runs. After `Stop` it can be started again.
class MEngineThread : private Selvan::Utilities::NonCopyable
{
public:
    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    /// Not started. `errorHandler` may be null, is not owned, and must outlive the thread.
    explicit MEngineThread(IThreadErrorHandler* errorHandler);
    virtual ~MEngineThread();

    /// Starts the thread and returns when it runs. Raises "AlreadyRunning", "BeginThread" with
    /// "errno", "ThreadExitedUnexpectedly", or a wait failure; the object is then "Inactive" (or,
    /// for the first, as it was).
    void Start();

    /// Stops the thread and returns when it has ended; does nothing on an inactive one. Raises
    /// "CannotStopSelf" or a wait failure; after the latter the state stays "Stopping" and `Stop`
    /// may be tried again. "Abandoned" has no parameter here.
    void Stop();

    /// Returns when the engine thread has finished one `OnFlush`; does nothing on an inactive one.
    /// Raises "CannotFlushSelf", "ThreadExitedUnexpectedly" or a wait failure.
    void Flush();

    /// Whether the calling thread is this engine thread. `Stop` and `Flush` then raise at once,
    /// even while another thread is inside one of them.
    bool IsCurrentThread() const;

    /// Whether no code runs on the engine thread any more: it was never started, was stopped, or
    /// has died. Not while another thread is in `Start` or `Stop`.
    bool HasEnded() const VAREK_LOCK_RULE(no_thread_safety_analysis);

    /// Set when the thread has ended, in whatever way, until the next `Start`; for waiting on
    /// something that only the living thread does. It stays the thread's.
    HANDLE GetEndedEvent() const { return threadEndedEvent; }

protected:
    /// The body of the thread. An `MException` that leaves it goes to `OnSpontaneousError`;
    /// anything else goes to `OnUnhandledException` and ends the process.
    virtual void ThreadFunction() = 0;

    /// Called on the engine thread for each `Flush`.
    virtual void OnFlush() = 0;

    /// Called on the engine thread when `Stop` has been asked for, before the loop is left.
    virtual void OnStop() = 0;

    /// Puts a handle at the end of the wait table. On success the functor is owned; the handle
    /// never is. Raises "TooManyWaitableEvents", and the functor then stays the caller's.
    void AddEvent(HANDLE event, MCallbackFunctor* functor);

    /// The same for a functor that is given away in any case.
    void AddEvent(HANDLE event, MCallbackFunctorPtr functor);

    /// Waits up to `timeoutMs` for a handle of the table and calls its functor. False on time-out.
    /// What the functor raises passes through; raises wait failures.
    bool WaitForEvents(std::uint32_t timeoutMs);

    /// Lets `Start` return.
    void SignalThreadStarted();

    /// True from the call of `Stop` to the next `Start`.
    bool IsStopRequested() const;

    /// Calls `OnStop` unless it has been called since `Start`: a stop that is asked for while a
    /// functor runs ends the loop before the wait comes to dispatch it.
    void ServeStop();

    /// False before `Start` and after `Stop`. A thread that has died on its own still counts.
    bool IsThreadActive() const;

    /// Makes the object "Inactive" whatever happens, stopping the thread first if it runs; the
    /// failures of that are dismissed. For destructors.
    void ForceStop() VAREK_LOCK_RULE(no_thread_safety_analysis);

private:
    struct Locations;

    static unsigned __stdcall ThreadEntry(void* thread);

    void RaiseIfCurrentThread(MFlowLocation& location, const wchar_t* literal);
    void CreateThread(MFlowLocation& location) VAREK_LOCK_RULE(requires_capability(stateMutex));
    void AwaitThread(MFlowLocation& location, HANDLE event)
        VAREK_LOCK_RULE(requires_capability(stateMutex));
    void AwaitEnd(MFlowLocation& location) VAREK_LOCK_RULE(requires_capability(stateMutex));
    void ForgetThread() VAREK_LOCK_RULE(requires_capability(stateMutex));

    void ChangeState(EngineThreadState newState) VAREK_LOCK_RULE(requires_capability(stateMutex));
    void RunThreadFunction();
    void OnFlushWrapper();
    void OnStopWrapper();

    // Written under the lock, read without it.
    std::atomic<EngineThreadState> state;
    // Held through each handshake. The engine thread never waits for it, and what it calls
    // meanwhile may take any other lock but this.
    MMutex stateMutex;
    std::atomic<unsigned> threadId;
    HANDLE threadHandle VAREK_LOCK_RULE(guarded_by(stateMutex));
    PlatformEvent flushRequestEvent;
    PlatformEvent stopEvent;
    PlatformEvent threadStartedEvent;
    PlatformEvent flushDoneEvent;
    std::vector<HANDLE> waitHandles; // in order of dispatch
    std::vector<MCallbackFunctorPtr> waitFunctors;
    IThreadErrorHandler* errorHandler;
    bool stopServed;
    PlatformEvent threadEndedEvent;
};
