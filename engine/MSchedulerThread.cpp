#include "engine/MSchedulerThread.h"

#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "engine/EngineErrors.h"
#include "engine/FailureGuard.h"

#include <windows.h>

#include <objbase.h>

const wchar_t MSchedulerThread::className[] = L"MSchedulerThread";

MSchedulerThread::MSchedulerThread(IThreadErrorHandler* errorHandler) : MEngineThread(errorHandler)
{
    static MFlowLocation location(className, className);
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

MSchedulerThread::~MSchedulerThread()
{
    static MFlowLocation location(className, L"~MSchedulerThread");
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    ForceStop();
}

void MSchedulerThread::RegisterSchedulerEvent(HANDLE event, MCallbackFunctor* functor)
{
    static MFlowLocation location(className, L"RegisterSchedulerEvent");
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    if (IsThreadActive())
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"ThreadRunning");
    AddEvent(event, functor);
}

void MSchedulerThread::ThreadFunction()
{
    GetDiagnosticsRegistry()->RegisterThreadName(L"Scheduler thread");
    static MFlowLocation location(className, L"ThreadFunction");
    MFlowScope scope(location.SetObject(this));

    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    MCallbackFunctorImp<MSchedulerThread> loop(this, &MSchedulerThread::RunLoop);
    MCallbackFunctorImp<MSchedulerThread> onFailure(this, &MSchedulerThread::LeaveCom);
    RunWithFailureHandler(loop, onFailure);
    LeaveCom();
}

void MSchedulerThread::RunLoop()
{
    SignalThreadStarted();
    do
        WaitForEvents(waitForEver);
    while (!IsStopRequested());
    ServeStop();
}

void MSchedulerThread::LeaveCom()
{
    CoUninitialize();
}

void MSchedulerThread::OnFlush() {}

void MSchedulerThread::OnStop() {}
