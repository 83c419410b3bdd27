#include "engine/MCommandProcessor.h"

#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "engine/EngineErrors.h"
#include "engine/FailureGuard.h"
#include "foundation/MException.h"

#include <utility>

#include <windows.h>

const wchar_t MCommandProcessor::className[] = L"MCommandProcessor";

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
      commandQueue(new MThreadSafeFifo<MCommand*, MCommand*>), abortEvent(EventReset::Manual)
{
    static MFlowLocation location(className, className);
    AddEvent(commandQueue->GetEvent(), MakeFunctor(this, &MCommandProcessor::OnCommandQueued));
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

MCommandProcessor::~MCommandProcessor()
{
    static MFlowLocation location(className, L"~MCommandProcessor");
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
}

void MCommandProcessor::ExecuteSynchronously(std::auto_ptr<MCommandSynchronous> command)
{
    static MFlowLocation location(className, L"ExecuteSynchronously");
    MFlowScope scope(location.SetObject(this));
    if (IsAborted())
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"ProcessorStopped");

    const HANDLE completionEvent = CreatePlatformEvent(EventReset::Automatic);
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

bool MCommandProcessor::IsAborted()
{
    static MFlowLocation location(className, L"IsAborted");
    const DWORD status = WaitForSingleObject(abortEvent, 0);
    if (status != WAIT_OBJECT_0 && status != WAIT_TIMEOUT)
        RaiseWindowsError(location.SetObject(this).SetLine(__LINE__), L"ErrorAccessingEvent");
    return status == WAIT_OBJECT_0;
}

void MCommandProcessor::ThreadFunction()
{
    GetDiagnosticsRegistry()->RegisterThreadName(L"Command processor thread");
    static MFlowLocation location(className, L"ThreadFunction");
    MFlowScope scope(location.SetObject(this));

    if (startFunctor)
        startFunctor->Invoke();
    MCallbackFunctorImp<MCommandProcessor> loop(this, &MCommandProcessor::RunLoop);
    MCallbackFunctorImp<MCommandProcessor> onFailure(
        this, &MCommandProcessor::RunStopFunctorAfterFailure);
    RunWithFailureHandler(loop, onFailure);
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
    static MFlowLocation location(className, L"ThreadFunction");
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
    static MFlowLocation location(className, L"ThreadFunction");
    try {
        RunStopFunctor();
    } catch (MException& exception) {
        location.SetObject(this).SetLine(__LINE__).DismissError(exception);
    }
}

void MCommandProcessor::OnCommandQueued()
{
    ExecuteNext();
}

bool MCommandProcessor::ExecuteNext()
{
    MCommand* next = nullptr;
    if (!commandQueue->Get(next))
        return false;
    const std::unique_ptr<MCommand> command(next);
    command->ExecuteGenericCommand();
    return true;
}

void MCommandProcessor::OnFlush()
{
    static MFlowLocation location(className, L"OnFlush");
    MFlowScope scope(location.SetObject(this));
    while (!commandQueue->IsEmpty())
        ExecuteNext();
}

void MCommandProcessor::OnStop()
{
    static MFlowLocation location(className, L"OnStop");
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
    static MFlowLocation location(className, L"Abort");
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    SetEvent(abortEvent);
    MCommand* command = nullptr;
    while (commandQueue->Get(command))
        delete command;
}
