#include "engine/MSchedulerThread.h"

#include "diagnostics/MDiagnosticsRegistry.h"
#include "engine/EngineErrors.h"
#include "engine/FailureGuard.h"

#include <windows.h>

#include <objbase.h>

const wchar_t MSchedulerThread::className[] = L"MSchedulerThread";

// Named in the log before there is a thread that could lack the memory for it.
struct MSchedulerThread::Locations {
    static Locations& Get()
    {
        static Locations locations;
        return locations;
    }

    MFlowLocation construction{className, className};
    MFlowLocation destruction{className, L"~MSchedulerThread"};
    MFlowLocation registerSchedulerEvent{className, L"RegisterSchedulerEvent"};
    MFlowLocation threadFunction{className, L"ThreadFunction"};
};

MSchedulerThread::MSchedulerThread(IThreadErrorHandler* errorHandler) : MEngineThread(errorHandler)
{
    MFlowLocation& location = Locations::Get().construction;
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

MSchedulerThread::~MSchedulerThread()
{
    MFlowLocation& location = Locations::Get().destruction;
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    ForceStop();
}

void MSchedulerThread::RegisterSchedulerEvent(HANDLE event, MCallbackFunctor* functor)
{
    MFlowLocation& location = Locations::Get().registerSchedulerEvent;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    if (IsThreadActive())
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"ThreadRunning");
    AddEvent(event, functor);
}

void MSchedulerThread::ThreadFunction()
{
    GetDiagnosticsRegistry()->RegisterThreadName(L"Scheduler thread");
    MFlowLocation& location = Locations::Get().threadFunction;
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
