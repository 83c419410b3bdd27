#include "engine/MEngineThread.h"

#include "diagnostics/FlowId.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "engine/EngineErrors.h"
#include "engine/FailureGuard.h"
#include "engine/MMutexLock.h"
#include "engine/StackReserve.h"

#include <cassert>
#include <cerrno>

#include <process.h>
#include <windows.h>

const wchar_t MEngineThread::className[] = L"MEngineThread";

// Constructed, and so named in the log, with the first object: from then on no traced function of
// the class needs memory, neither on the way out nor on the way from a failure.
struct MEngineThread::Locations {
    static Locations& Get()
    {
        static Locations locations;
        return locations;
    }

    MFlowLocation construction{className, className};
    MFlowLocation destruction{className, L"~MEngineThread"};
    MFlowLocation start{className, L"Start"};
    MFlowLocation stop{className, L"Stop"};
    MFlowLocation flush{className, L"Flush"};
    MFlowLocation forceStop{className, L"ForceStop"};
    MFlowLocation addEvent{className, L"AddEvent"};
    MFlowLocation waitForEvents{className, L"WaitForEvents"};
    MFlowLocation signalThreadStarted{className, L"SignalThreadStarted"};
    MFlowLocation changeState{className, L"ChangeState"};
    MFlowLocation onFlushWrapper{className, L"OnFlushWrapper"};
    MFlowLocation onStopWrapper{className, L"OnStopWrapper"};
};

namespace
{

const wchar_t* const stateNames[] = {L"Inactive", L"Starting", L"Running", L"Stopping"};

void RegisterStateNames(const wchar_t* className)
{
    std::uint32_t state = 0;
    for (const wchar_t* name : stateNames)
        GetDiagnosticsRegistry()->RegisterStateName(FlowId(className), state++, name);
}

#ifndef NDEBUG
/// A stop may be tried again, and whatever it was, a thread can be forgotten.
bool LeadsTo(EngineThreadState from, EngineThreadState to)
{
    return to == EngineThreadState::Inactive ||
           static_cast<int>(to) == static_cast<int>(from) + 1 ||
           (to == EngineThreadState::Stopping && from == to);
}
#endif

} // namespace

MEngineThread::MEngineThread(IThreadErrorHandler* errorHandler)
    : state(EngineThreadState::Inactive), threadId(0), threadHandle(nullptr),
      flushRequestEvent(EventReset::Automatic), stopEvent(EventReset::Manual),
      threadStartedEvent(EventReset::Automatic), flushDoneEvent(EventReset::Automatic),
      errorHandler(errorHandler), stopServed(false), threadEndedEvent(EventReset::Manual)
{
    MFlowLocation& location = Locations::Get().construction;
    AddEvent(flushRequestEvent, MakeFunctor(this, &MEngineThread::OnFlushWrapper));
    AddEvent(stopEvent, MakeFunctor(this, &MEngineThread::OnStopWrapper));
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
    RegisterStateNames(className);
}

MEngineThread::~MEngineThread()
{
    MFlowLocation& location = Locations::Get().destruction;
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    ForceStop();
}

void MEngineThread::Start()
{
    MFlowLocation& location = Locations::Get().start;
    MFlowScope scope(location.SetObject(this));

    MMutexLock lock(stateMutex);
    assert(IsThreadActive() == (threadHandle != nullptr));
    if (state != EngineThreadState::Inactive)
        RaiseError(location.SetObject(this).SetLine(__LINE__), L"AlreadyRunning");
    ResetEvent(stopEvent);
    ResetEvent(threadEndedEvent);
    stopServed = false;
    CreateThread(location);
    ChangeState(EngineThreadState::Starting);
    try {
        AwaitThread(location, threadStartedEvent);
    } catch (...) {
        ForceStop();
        throw;
    }
    ChangeState(EngineThreadState::Running);
}

void MEngineThread::Stop()
{
    MFlowLocation& location = Locations::Get().stop;
    MFlowScope scope(location.SetObject(this));

    RaiseIfCurrentThread(location, L"CannotStopSelf");
    MMutexLock lock(stateMutex);
    if (state == EngineThreadState::Inactive)
        return;
    ChangeState(EngineThreadState::Stopping);
    SetEvent(stopEvent);
    AwaitEnd(location);
    ForgetThread();
}

void MEngineThread::Flush()
{
    MFlowLocation& location = Locations::Get().flush;
    MFlowScope scope(location.SetObject(this));

    RaiseIfCurrentThread(location, L"CannotFlushSelf");
    MMutexLock lock(stateMutex);
    assert(IsThreadActive() == (threadHandle != nullptr));
    if (state == EngineThreadState::Inactive)
        return;
    SetEvent(flushRequestEvent);
    AwaitThread(location, flushDoneEvent);
}

void MEngineThread::ForceStop()
{
    MFlowLocation& location = Locations::Get().forceStop;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    if (state == EngineThreadState::Running)
        DismissFailureOf([this] { Stop(); }, location.SetLine(__LINE__));
    ForgetThread();
}

void MEngineThread::AddEvent(HANDLE event, MCallbackFunctor* functor)
{
    MFlowLocation& location = Locations::Get().addEvent;
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
    MFlowLocation& location = Locations::Get().waitForEvents;
    const DWORD count = static_cast<DWORD>(waitHandles.size());
    assert(count == waitFunctors.size());
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
    MFlowLocation& location = Locations::Get().signalThreadStarted;
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

bool MEngineThread::IsCurrentThread() const
{
    return GetCurrentThreadId() == threadId;
}

bool MEngineThread::HasEnded() const
{
    return !threadHandle || WaitForSingleObject(threadHandle, 0) == WAIT_OBJECT_0;
}

// Ahead of the lock, which another thread may hold while it waits for this one.
void MEngineThread::RaiseIfCurrentThread(MFlowLocation& location, const wchar_t* literal)
{
    if (IsCurrentThread())
        RaiseError(location.SetObject(this).SetLine(__LINE__), literal);
}

void MEngineThread::CreateThread(MFlowLocation& location)
{
    unsigned id = 0;
    const std::uintptr_t created = _beginthreadex(nullptr, 0, ThreadEntry, this, 0, &id);
    if (created == 0) {
        const int reason = errno;
        MError error;
        location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"BeginThread");
        error.AddParameter(L"errno", reason);
        location.Throw(error);
    }
    threadId = id;
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
    MFlowLocation& location = Locations::Get().changeState;
    assert(LeadsTo(state, newState));
    state = newState;
    location.SetObject(this).LogStateChange(static_cast<std::uint32_t>(newState), 0);
}

// The guard observes and never handles: a fault travels on to whatever the host has installed, also
// when the one who is told of it fails.
unsigned __stdcall MEngineThread::ThreadEntry(void* thread)
{
    const GuardedBody run = [](void* self) {
        static_cast<MEngineThread*>(self)->RunThreadFunction();
    };
    const GuardFilter observe = [](void* self, _EXCEPTION_POINTERS* pointers) -> long {
        if (ICrashHandler* const handler = static_cast<MEngineThread*>(self)->errorHandler)
            RunContained([=] { handler->OnUnhandledException(pointers); });
        SetEvent(static_cast<MEngineThread*>(self)->threadEndedEvent);
        return GuardContinueSearch;
    };
    ReserveStackForFailures();
    RunGuarded(run, observe, thread);
    SetEvent(static_cast<MEngineThread*>(thread)->threadEndedEvent);
    return 0;
}

// The id is known here before the one who starts the thread knows it.
void MEngineThread::RunThreadFunction()
{
    threadId = GetCurrentThreadId();
    try {
        ThreadFunction();
    } catch (MException& exception) {
        if (errorHandler)
            errorHandler->OnSpontaneousError(exception);
    }
}

void MEngineThread::OnFlushWrapper()
{
    MFlowLocation& location = Locations::Get().onFlushWrapper;
    MFlowScope scope(location.SetObject(this));
    OnFlush();
    SetEvent(flushDoneEvent);
}

void MEngineThread::OnStopWrapper()
{
    MFlowLocation& location = Locations::Get().onStopWrapper;
    MFlowScope scope(location.SetObject(this));
    assert(!stopServed);
    stopServed = true;
    OnStop();
}
