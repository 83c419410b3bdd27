#include "engine/MCommandProcessor.h"

#include "diagnostics/MDiagnosticsRegistry.h"
#include "engine/EngineErrors.h"
#include "engine/FailureGuard.h"
#include "engine/WatchedWork.h"

#include <utility>

#include <windows.h>

const wchar_t MCommandProcessor::className[] = L"MCommandProcessor";

// Named in the log before there is a thread that could lack the memory for it.
struct MCommandProcessor::Locations {
    static Locations& Get()
    {
        static Locations locations;
        return locations;
    }

    MFlowLocation construction{className, className};
    MFlowLocation destruction{className, L"~MCommandProcessor"};
    MFlowLocation executeSynchronously{className, L"ExecuteSynchronously"};
    MFlowLocation isAborted{className, L"IsAborted"};
    MFlowLocation threadFunction{className, L"ThreadFunction"};
    MFlowLocation onFlush{className, L"OnFlush"};
    MFlowLocation onStop{className, L"OnStop"};
    MFlowLocation abort{className, L"Abort"};
};

// The functors are owned before anything can fail.
MCommandProcessor::MCommandProcessor(IThreadErrorHandler* errorHandler,
                                     MCallbackFunctor* startFunctor, MCallbackFunctor* stopFunctor,
                                     MCallbackFunctor* idleFunctor, std::uint32_t idleTimeoutMs)
    : MCommandProcessor(errorHandler, MCallbackFunctorPtr(startFunctor),
                        MCallbackFunctorPtr(stopFunctor), MCallbackFunctorPtr(idleFunctor),
                        idleTimeoutMs)
{
}

MCommandProcessor::MCommandProcessor(IThreadErrorHandler* errorHandler,
                                     MCallbackFunctorPtr startFunctor,
                                     MCallbackFunctorPtr stopFunctor,
                                     MCallbackFunctorPtr idleFunctor, std::uint32_t idleTimeoutMs)
    : MEngineThread(errorHandler), startFunctor(std::move(startFunctor)),
      stopFunctor(std::move(stopFunctor)), idleFunctor(std::move(idleFunctor)),
      idleTimeoutMs(idleTimeoutMs ? idleTimeoutMs : waitForEver),
      commandQueue(new MThreadSafeFifo<MCommand*, MCommand*>), abortEvent(EventReset::Manual),
      aborted(false), died(false)
{
    MFlowLocation& location = Locations::Get().construction;
    AddEvent(commandQueue->GetEvent(), MakeFunctor(this, &MCommandProcessor::OnCommandQueued));
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

MCommandProcessor::~MCommandProcessor()
{
    MFlowLocation& location = Locations::Get().destruction;
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    DropQueued();
}

void MCommandProcessor::ExecuteSynchronously(std::auto_ptr<MCommandSynchronous> command)
{
    MFlowLocation& location = Locations::Get().executeSynchronously;
    MFlowScope scope(location.SetObject(this));
    if (IsAborted())
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"ProcessorStopped");

    const HANDLE completionEvent = CreatePlatformEvent(EventReset::Automatic);
    if (!completionEvent)
        RaiseWindowsError(location.SetObject(this).SetLine(__LINE__), L"WaitFailed");
    command->completionEvent = completionEvent;
    commandQueue->Put(command.get());
    command.release();

    const HANDLE handles[] = {completionEvent, abortEvent};
    const DWORD status = WaitForMultipleObjects(2, handles, FALSE, INFINITE);
    CloseHandle(completionEvent);
    if (status == WAIT_OBJECT_0)
        return;

    location.SetObject(this).SetLine(__LINE__);
    if (status == WAIT_OBJECT_0 + 1)
        RaiseError(location, L"CommandProcessingAborted");
    if (status == WAIT_ABANDONED_0 || status == WAIT_ABANDONED_0 + 1)
        RaiseError(location, L"Abandoned");
    RaiseWindowsError(location, L"WaitFailed");
}

// Whoever puts a command behind an abort, or a death, finds it told, and empties the queue himself.
bool MCommandProcessor::Queue(std::unique_ptr<MCommand> command)
{
    commandQueue->Put(command.get());
    command.release();
    if (IsAborted())
        DropQueued();
    else if (died)
        DropUnawaited();
    else
        return true;
    return false;
}

bool MCommandProcessor::IsAborted()
{
    MFlowLocation& location = Locations::Get().isAborted;
    const DWORD status = WaitForSingleObject(abortEvent, 0);
    if (status != WAIT_OBJECT_0 && status != WAIT_TIMEOUT)
        RaiseWindowsError(location.SetObject(this).SetLine(__LINE__), L"ErrorAccessingEvent");
    return status == WAIT_OBJECT_0;
}

void MCommandProcessor::ThreadFunction()
{
    GetDiagnosticsRegistry()->RegisterThreadName(L"Command processor thread");
    MFlowLocation& location = Locations::Get().threadFunction;
    MFlowScope scope(location.SetObject(this));

    died = false;
    if (startFunctor)
        startFunctor->Invoke();
    MCallbackFunctorImp<MCommandProcessor> loop(this, &MCommandProcessor::RunLoop);
    MCallbackFunctorImp<MCommandProcessor> onFailure(
        this, &MCommandProcessor::RunStopFunctorAfterFailure);
    try {
        RunWithFailureHandler(loop, onFailure);
    } catch (MException&) {
        DropUnawaited();
        throw;
    }
    RunStopFunctor();
}

void MCommandProcessor::RunLoop()
{
    SignalThreadStarted();
    do {
        if (!WaitForEvents(idleTimeoutMs))
            RunIdleFunctor();
    } while (!IsStopRequested());
    ServeStop();
}

void MCommandProcessor::RunIdleFunctor()
{
    MFlowLocation& location = Locations::Get().threadFunction;
    if (!idleFunctor)
        return;
    try {
        idleFunctor->Invoke();
    } catch (MException& exception) {
        location.SetObject(this).SetLine(__LINE__).DismissError(exception);
    }
}

void MCommandProcessor::RunStopFunctor()
{
    if (stopFunctor)
        stopFunctor->Invoke();
}

void MCommandProcessor::RunStopFunctorAfterFailure()
{
    died = true;
    MFlowLocation& location = Locations::Get().threadFunction.SetObject(this).SetLine(__LINE__);
    DismissFailureOf([this] { RunStopFunctor(); }, location);
}

void MCommandProcessor::OnCommandQueued()
{
    ExecuteNext();
}

void MCommandProcessor::ExecuteNext()
{
    MCommand* next = nullptr;
    if (!commandQueue->Get(next))
        return; // whoever came too late has taken his command back
    const std::unique_ptr<MCommand> command(next);
    const WatchedWork watched(WatchedWork::Kind::Command);
    if (!aborted)
        command->ExecuteGenericCommand();
}

void MCommandProcessor::OnFlush()
{
    MFlowLocation& location = Locations::Get().onFlush;
    MFlowScope scope(location.SetObject(this));
    for (std::int32_t left = commandQueue->GetCount(); left > 0; --left)
        ExecuteNext();
}

void MCommandProcessor::OnStop()
{
    MFlowLocation& location = Locations::Get().onStop;
    MFlowScope scope(location.SetObject(this));
    try {
        OnFlush();
    } catch (MException& exception) {
        location.SetObject(this).SetLine(__LINE__).DismissError(exception);
    }
    Abort();
}

// The event first: a caller who arrives while the queue is being emptied is turned away.
void MCommandProcessor::Abort()
{
    MFlowLocation& location = Locations::Get().abort;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    aborted = true;
    SetEvent(abortEvent);
    DropQueued();
}

void MCommandProcessor::DropQueued()
{
    MCommand* command = nullptr;
    while (commandQueue->Get(command))
        delete command;
}

// What somebody waits for stays, for the next thread.
void MCommandProcessor::DropUnawaited()
{
    const auto isUnawaited = [](MCommand* command) {
        return dynamic_cast<MCommandSynchronous*>(command) == nullptr;
    };
    MCommand* command = nullptr;
    while (commandQueue->GetFirst(isUnawaited, command))
        delete command;
}
