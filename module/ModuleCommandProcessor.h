#pragma once

#include "engine/IThreadErrorHandler.h"
#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "engine/MMutex.h"
#include "module/CallbackFunctor1Param.h"
#include "module/ModuleReference.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// The one object behind a module: owner of its two threads, and the place where what kills one of
/// them turns into a call to the host.
///
/// Code built into the module reaches its threads through it:
///
///     ModuleCommandProcessor& module = ModuleCommandProcessor::GetInstance();
///     module.GetCommandProcessor()->ExecuteSynchronously(...); // not from a command
///     module.GetDesyncScheduler()->ScheduleDesyncEvent(new ProgressEvent(...));
///
/// The member functions return at once on a null object.
class ModuleCommandProcessor : public IThreadErrorHandler
{
public:
    /// Takes the filed chain of an exception that ended an engine thread, or an empty text.
    typedef std::unique_ptr<Varek::Runtime::CallbackFunctor1Param<const std::wstring&>>
        SpontaneousErrorCallback;

    /// Takes the raw context of a fault.
    typedef std::unique_ptr<Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*>>
        CrashCallback;

    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    /// The singleton, made and started at the first call, which must not race another. Raises the
    /// `MException` of a failed start, or std::bad_alloc, and leaves nothing running; the next call
    /// begins afresh. After `Stop` it comes back stopped.
    static ModuleCommandProcessor& GetInstance();

    /// Calls the host's callback with the filed chain, on the engine thread that failed. The text
    /// is empty when there is no memory for it. Nothing that the callback raises gets out.
    void OnSpontaneousError(const MException& exception) override;

    virtual ~ModuleCommandProcessor();

    /// Runs on the processor thread whenever it has been idle for ten seconds: a place for periodic
    /// work. There is none.
    virtual void OnCommandProcessorIdle();

    /// Runs what `OnShutdown` was given, then stops the processor, then the scheduler, for good.
    /// Raises the `MException` of a failed stop, and on one of these two threads "CannotStopSelf"
    /// or "CannotFlushSelf" of `MEngineThread`, before anything is stopped and whoever else is in
    /// here.
    virtual void Stop();

    /// Starts the scheduler, then the processor, unless that, or a stop, has been done before.
    virtual void Start();

    /// Calls the host's callback at the point of the fault. Takes no lock and makes no text.
    void OnUnhandledException(_EXCEPTION_POINTERS* pointers) override;

    /// Replaces both callbacks. Either may be empty.
    void RegisterCallbacks(SpontaneousErrorCallback onSpontaneousError, CrashCallback onCrash);

    /// Has `functor` invoked by the first `Stop` from now on, before the processor is stopped: the
    /// place to stop what the module has started itself, a thread, a wait handle, a timer, since
    /// none of them can be ended while the module is being unloaded.
    ///
    /// Functors run in reverse order of registration, on the thread that calls `Stop`, with the
    /// module's threads still at work, so they may execute commands and schedule events; they may
    /// not call `Stop`, nor wait for a thread that does. What one raises is dismissed, and the rest
    /// run. One that is registered by another while these run, runs too.
    ///
    /// Owned from here on, whatever happens. Any thread. Raises "ModuleStopped" when the functors
    /// have been run already: register first, then start what is to be stopped. std::bad_alloc when
    /// there is no memory to note it. It starts nothing, so a static may call it from its
    /// constructor. A process that ends without a shutdown invokes none: its threads are gone by
    /// then, and statics that were made later than the module too.
    ///
    /// The answer is a number for `ForgetOnShutdown`.
    static std::uint64_t OnShutdown(MCallbackFunctorPtr functor);

    /// Takes back what `OnShutdown` was given, which is freed. False when it has been invoked, or
    /// is just being, and when the process is about to end. Any thread.
    static bool ForgetOnShutdown(std::uint64_t number);

    /// Stays after `Stop`, and refuses commands then. Owned by this object.
    MCommandProcessor* GetCommandProcessor() { return commandProcessor.get(); }

    /// Stays after `Stop`, and takes events that nobody fires then. Owned by this object.
    MDesyncEventScheduler* GetDesyncScheduler() { return desyncScheduler.get(); }

private:
    struct Locations;

    static ModuleCommandProcessor& GetSingleton();

    ModuleCommandProcessor();

    std::uint64_t AddShutdownFunctor(MCallbackFunctorPtr functor);
    bool RemoveShutdownFunctor(std::uint64_t number);
    void StartScheduler() VAREK_LOCK_RULE(requires_capability(lifecycleMutex));
    void StartProcessor() VAREK_LOCK_RULE(requires_capability(lifecycleMutex));
    void Dismantle() VAREK_LOCK_RULE(requires_capability(lifecycleMutex));
    void RaiseIfOwnThread();
    void StopThreads() VAREK_LOCK_RULE(requires_capability(lifecycleMutex));
    void DropReferenceOnceEnded() VAREK_LOCK_RULE(requires_capability(lifecycleMutex));
    void RunShutdownFunctors() VAREK_LOCK_RULE(requires_capability(lifecycleMutex));
    MCallbackFunctorPtr TakeShutdownFunctor();

    // Held through a start and a stop, and so ahead of the locks of the threads and of whatever the
    // functors of a shutdown take. Nothing of ours waits for it once the lifecycle is done.
    MMutex lifecycleMutex VAREK_LOCK_RULE(acquired_before(shutdownMutex));
    std::atomic<bool> lifecycleDone; // set by the first Start or Stop, and never cleared
    // These two are written under the lock before that, and only read by anybody afterwards.
    std::unique_ptr<MCommandProcessor> commandProcessor;
    std::unique_ptr<MDesyncEventScheduler> desyncScheduler;
    SpontaneousErrorCallback spontaneousErrorCallback;
    CrashCallback crashCallback;
    ModuleReference moduleReference VAREK_LOCK_RULE(guarded_by(lifecycleMutex));
    MMutex shutdownMutex; // guards what follows, and is held while nothing else is done
    std::vector<std::pair<std::uint64_t, MCallbackFunctorPtr>>
        shutdownFunctors VAREK_LOCK_RULE(guarded_by(shutdownMutex));
    std::uint64_t shutdownNumber VAREK_LOCK_RULE(guarded_by(shutdownMutex)); // the latest
    bool shutdownFunctorsRun VAREK_LOCK_RULE(guarded_by(shutdownMutex));
};
