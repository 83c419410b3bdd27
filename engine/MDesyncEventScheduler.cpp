#include "engine/MDesyncEventScheduler.h"

#include "diagnostics/MFlowLocation.h"
#include "engine/MDesyncEvent.h"
#include "foundation/MException.h"

const wchar_t MDesyncEventScheduler::className[] = L"MDesyncEventScheduler";

MDesyncEventScheduler::MDesyncEventScheduler(IThreadErrorHandler* errorHandler)
    : schedulerThread(errorHandler)
{
    static MFlowLocation location(className, className);
    MCallbackFunctorPtr functor = MakeFunctor(this, &MDesyncEventScheduler::OnSchedulerEvent);
    schedulerThread.RegisterSchedulerEvent(eventQueue.GetEvent(), functor.get());
    functor.release();
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

MDesyncEventScheduler::~MDesyncEventScheduler()
{
    static MFlowLocation location(className, L"~MDesyncEventScheduler");
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    try {
        Disable();
    } catch (MException& exception) {
        location.SetObject(this).SetLine(__LINE__).DismissError(exception);
    }
}

void MDesyncEventScheduler::Enable()
{
    static MFlowLocation location(className, L"Enable");
    MFlowScope scope(location.SetObject(this));
    schedulerThread.Start();
}

// The flush delivers nothing by itself: it waits until the thread is back from the burst in
// progress.
void MDesyncEventScheduler::Disable()
{
    static MFlowLocation location(className, L"Disable");
    MFlowScope scope(location.SetObject(this));
    schedulerThread.Flush();
    schedulerThread.Stop();
}

void MDesyncEventScheduler::ScheduleDesyncEvent(MDesyncEvent* event)
{
    static MFlowLocation location(className, L"ScheduleDesyncEvent");
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    eventQueue.Put(event);
}

void MDesyncEventScheduler::OnSchedulerEvent()
{
    static MFlowLocation location(className, L"OnSchedulerEvent");
    MFlowScope scope(location.SetObject(this));
    MDesyncEvent* event = nullptr;
    while (eventQueue.Get(event)) {
        try {
            event->Fire();
        } catch (MException& exception) {
            location.SetObject(this).SetLine(__LINE__).DismissError(exception);
        }
        ::operator delete(event);
    }
}
