#include "engine/MEngineThread.h"

#include "diagnostics/FlowId.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "diagnostics/StructuredGuard.h"
#include "engine/EngineErrors.h"
#include "engine/MMutexLock.h"
#include "foundation/MException.h"

#include <cerrno>

#include <process.h>
#include <windows.h>

const wchar_t MEngineThread::className[] = L"MEngineThread";

namespace
{

const wchar_t* const stateNames[] = {L"Inactive", L"Starting", L"Running", L"Stopping"};

void RegisterStateNames(const wchar_t* className)
{
    std::uint32_t state = 0;
    for (const wchar_t* name : stateNames)
        GetDiagnosticsRegistry()->RegisterStateName(FlowId(className), state++, name);
}

} // namespace

MEngineThread::MEngineThread(IThreadErrorHandler* errorHandler)
    : state(EngineThreadState::Inactive), threadId(0), threadHandle(nullptr),
      flushRequestEvent(EventReset::Automatic), stopEvent(EventReset::Manual),
      threadStartedEvent(EventReset::Automatic), flushDoneEvent(EventReset::Automatic),
      errorHandler(errorHandler), stopServed(false)
{
    static MFlowLocation location(className, className);
    AddEvent(flushRequestEvent, MakeFunctor(this, &MEngineThread::OnFlushWrapper));
    AddEvent(stopEvent, MakeFunctor(this, &MEngineThread::OnStopWrapper));
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
    RegisterStateNames(className);
}

MEngineThread::~MEngineThread()
{
    static MFlowLocation location(className, L"~MEngineThread");
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    ForceStop();
}

void MEngineThread::Start()
{
    static MFlowLocation location(className, L"Start");
    MFlowScope scope(location.SetObject(this));

    MMutexLock lock(stateMutex);
    if (state != EngineThreadState::Inactive)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"AlreadyRunning");
    ResetEvent(stopEvent);
    stopServed = false;
    CreateThread(location);
    ChangeState(EngineThreadState::Starting);
    try {
        AwaitThread(location, threadStartedEvent);
    } catch (MException&) {
        ForceStop();
        throw;
    }
    ChangeState(EngineThreadState::Running);
}

void MEngineThread::Stop()
{
    static MFlowLocation location(className, L"Stop");
    MFlowScope scope(location.SetObject(this));

    MMutexLock lock(stateMutex);
    if (state == EngineThreadState::Inactive)
        return;
    if (GetCurrentThreadId() == threadId)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"CannotStopSelf");
    ChangeState(EngineThreadState::Stopping);
    SetEvent(stopEvent);
    AwaitEnd(location);
    ForgetThread();
}

void MEngineThread::Flush()
{
    static MFlowLocation location(className, L"Flush");
    MFlowScope scope(location.SetObject(this));

    MMutexLock lock(stateMutex);
    if (state == EngineThreadState::Inactive)
        return;
    if (GetCurrentThreadId() == threadId)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"CannotFlushSelf");
    SetEvent(flushRequestEvent);
    AwaitThread(location, flushDoneEvent);
}

void MEngineThread::ForceStop()
{
    static MFlowLocation location(className, L"ForceStop");
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    if (state == EngineThreadState::Running) {
        try {
            Stop();
        } catch (MException& exception) {
            location.SetObject(this).SetLine(__LINE__).DismissError(exception);
        }
    }
    ForgetThread();
}

void MEngineThread::AddEvent(HANDLE event, MCallbackFunctor* functor)
{
    static MFlowLocation location(className, L"AddEvent");
    const std::size_t count = waitHandles.size();
    if (count >= MAXIMUM_WAIT_OBJECTS)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"TooManyWaitableEvents");
    waitHandles.reserve(count + 1);
    waitFunctors.reserve(count + 1);
    waitHandles.push_back(event);
    waitFunctors.emplace_back(functor);
}

void MEngineThread::AddEvent(HANDLE event, MCallbackFunctorPtr functor)
{
    AddEvent(event, functor.get());
    functor.release();
}

bool MEngineThread::WaitForEvents(std::uint32_t timeoutMs)
{
    static MFlowLocation location(className, L"WaitForEvents");
    const DWORD count = static_cast<DWORD>(waitHandles.size());
    const DWORD status = WaitForMultipleObjects(count, waitHandles.data(), FALSE, timeoutMs);
    if (status == WAIT_TIMEOUT)
        return false;
    if (status >= count)
        RaiseWaitFailure(location.SetObject(this).SetLine(__LINE__), status, count);
    waitFunctors[status]->Invoke();
    return true;
}

void MEngineThread::SignalThreadStarted()
{
    static MFlowLocation location(className, L"SignalThreadStarted");
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    SetEvent(threadStartedEvent);
}

bool MEngineThread::IsStopRequested() const
{
    return WaitForSingleObject(stopEvent, 0) == WAIT_OBJECT_0;
}

void MEngineThread::ServeStop()
{
    if (!stopServed)
        OnStopWrapper();
}

bool MEngineThread::IsThreadActive() const
{
    return state != EngineThreadState::Inactive;
}

void MEngineThread::CreateThread(MFlowLocation& location)
{
    const std::uintptr_t created = _beginthreadex(nullptr, 0, ThreadEntry, this, 0, &threadId);
    if (created == 0) {
        const int reason = errno;
        MError error;
        location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"BeginThread");
        error.AddParameter(L"errno", reason);
        location.Throw(error);
    }
    threadHandle = reinterpret_cast<HANDLE>(created);
}

/// Waits for `event`, which only the living thread sets.
void MEngineThread::AwaitThread(MFlowLocation& location, HANDLE event)
{
    const HANDLE handles[] = {event, threadHandle};
    const DWORD status = WaitForMultipleObjects(2, handles, FALSE, INFINITE);
    if (status == WAIT_OBJECT_0)
        return;
    if (status == WAIT_OBJECT_0 + 1)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"ThreadExitedUnexpectedly");
    RaiseWaitFailure(location.SetObject(this).SetLine(__LINE__), status, 2);
}

void MEngineThread::AwaitEnd(MFlowLocation& location)
{
    const DWORD status = WaitForSingleObject(threadHandle, INFINITE);
    if (status == WAIT_OBJECT_0)
        return;
    if (status == WAIT_ABANDONED)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"Abandoned");
    RaiseWaitFailure(location.SetObject(this).SetLine(__LINE__), status, 1);
}

void MEngineThread::ForgetThread()
{
    ChangeState(EngineThreadState::Inactive);
    if (threadHandle)
        CloseHandle(threadHandle);
    threadHandle = nullptr;
    threadId = 0;
}

void MEngineThread::ChangeState(EngineThreadState newState)
{
    static MFlowLocation location(className, L"ChangeState");
    state = newState;
    location.SetObject(this).LogStateChange(static_cast<std::uint32_t>(newState), 0);
}

// The guard observes and never handles: a fault travels on to whatever the host has installed.
unsigned __stdcall MEngineThread::ThreadEntry(void* thread)
{
    const GuardedBody run = [](void* self) {
        static_cast<MEngineThread*>(self)->RunThreadFunction();
    };
    const GuardFilter observe = [](void* self, _EXCEPTION_POINTERS* pointers) -> long {
        if (ICrashHandler* const handler = static_cast<MEngineThread*>(self)->errorHandler)
            handler->OnUnhandledException(pointers);
        return GuardContinueSearch;
    };
    return RunGuarded(run, observe, thread) ? 0 : 1;
}

void MEngineThread::RunThreadFunction()
{
    try {
        ThreadFunction();
    } catch (MException& exception) {
        if (errorHandler)
            errorHandler->OnSpontaneousError(exception);
    }
}

void MEngineThread::OnFlushWrapper()
{
    static MFlowLocation location(className, L"OnFlushWrapper");
    MFlowScope scope(location.SetObject(this));
    OnFlush();
    SetEvent(flushDoneEvent);
}

void MEngineThread::OnStopWrapper()
{
    static MFlowLocation location(className, L"OnStopWrapper");
    MFlowScope scope(location.SetObject(this));
    stopServed = true;
    OnStop();
}
