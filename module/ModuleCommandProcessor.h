#pragma once

#include "engine/IThreadErrorHandler.h"
#include "engine/MCommandProcessor.h"
#include "engine/MDesyncEventScheduler.h"
#include "engine/MMutex.h"
#include "module/CallbackFunctor1Param.h"
#include "module/ModuleReference.h"

#include <memory>
#include <string>

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
    /// `MException` of a failed start; the next call tries again. After `Stop` it comes back
    /// stopped.
    static ModuleCommandProcessor& GetInstance();

    /// Calls the host's callback with the filed chain, on the engine thread that failed.
    void OnSpontaneousError(const MException& exception) override;

    virtual ~ModuleCommandProcessor();

    /// Runs on the processor thread whenever it has been idle for ten seconds: a place for periodic
    /// work. There is none.
    virtual void OnCommandProcessorIdle();

    /// Stops the processor, then the scheduler, for good. Raises the `MException` of a failed stop.
    virtual void Stop();

    /// Starts the scheduler, then the processor, unless that, or a stop, has been done before.
    virtual void Start();

    /// Calls the host's callback at the point of the fault. Takes no lock and makes no text.
    void OnUnhandledException(_EXCEPTION_POINTERS* pointers) override;

    /// Replaces both callbacks. Either may be empty.
    void RegisterCallbacks(SpontaneousErrorCallback onSpontaneousError, CrashCallback onCrash);

    /// Stays after `Stop`, and refuses commands then. Owned by this object.
    MCommandProcessor* GetCommandProcessor() { return commandProcessor.get(); }

    /// Stays after `Stop`, and takes events that nobody fires then. Owned by this object.
    MDesyncEventScheduler* GetDesyncScheduler() { return desyncScheduler.get(); }

private:
    ModuleCommandProcessor();

    void StartScheduler();
    void StartProcessor();

    MMutex lifecycleMutex;
    bool lifecycleDone; // set by the first Start or Stop, and never cleared
    std::unique_ptr<MCommandProcessor> commandProcessor;
    std::unique_ptr<MDesyncEventScheduler> desyncScheduler;
    SpontaneousErrorCallback spontaneousErrorCallback;
    CrashCallback crashCallback;
    ModuleReference moduleReference;
};
