#include "engine/MDesyncEventScheduler.h"

#include "engine/EngineErrors.h"
#include "engine/MDesyncEvent.h"
#include "engine/WatchedWork.h"

const wchar_t MDesyncEventScheduler::className[] = L"MDesyncEventScheduler";

// Named in the log before there is a thread that could lack the memory for it.
struct MDesyncEventScheduler::Locations {
    static Locations& Get()
    {
        static Locations locations;
        return locations;
    }

    MFlowLocation construction{className, className};
    MFlowLocation destruction{className, L"~MDesyncEventScheduler"};
    MFlowLocation enable{className, L"Enable"};
    MFlowLocation disable{className, L"Disable"};
    MFlowLocation scheduleDesyncEvent{className, L"ScheduleDesyncEvent"};
    MFlowLocation onSchedulerEvent{className, L"OnSchedulerEvent"};
};

MDesyncEventScheduler::MDesyncEventScheduler(IThreadErrorHandler* errorHandler)
    : schedulerThread(errorHandler)
{
    MFlowLocation& location = Locations::Get().construction;
    MCallbackFunctorPtr functor = MakeFunctor(this, &MDesyncEventScheduler::OnSchedulerEvent);
    schedulerThread.RegisterSchedulerEvent(eventQueue.GetEvent(), functor.get());
    functor.release();
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

MDesyncEventScheduler::~MDesyncEventScheduler()
{
    MFlowLocation& location = Locations::Get().destruction;
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    DismissFailureOf([this] { Disable(); }, location.SetLine(__LINE__));
    DropOwningEvents();
}

void MDesyncEventScheduler::Enable()
{
    MFlowLocation& location = Locations::Get().enable;
    MFlowScope scope(location.SetObject(this));
    schedulerThread.Start();
}

// The flush delivers nothing by itself: it waits until the thread is back from the burst in
// progress.
void MDesyncEventScheduler::Disable()
{
    MFlowLocation& location = Locations::Get().disable;
    MFlowScope scope(location.SetObject(this));
    schedulerThread.Flush();
    schedulerThread.Stop();
}

void MDesyncEventScheduler::ScheduleDesyncEvent(MDesyncEvent* event)
{
    MFlowLocation& location = Locations::Get().scheduleDesyncEvent;
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint();
    eventQueue.Put(event);
}

void MDesyncEventScheduler::OnSchedulerEvent()
{
    MFlowLocation& location = Locations::Get().onSchedulerEvent;
    MFlowScope scope(location.SetObject(this));
    MDesyncEvent* event = nullptr;
    while (eventQueue.Get(event)) {
        try {
            const WatchedWork watched(WatchedWork::Kind::Event);
            event->Fire();
        } catch (MException& exception) {
            location.SetObject(this).SetLine(__LINE__).DismissError(exception);
        }
        ::operator delete(event);
    }
}

void MDesyncEventScheduler::DropOwningEvents()
{
    MDesyncEvent* event = nullptr;
    while (eventQueue.Get(event))
        if (auto* const owning = dynamic_cast<MOwningDesyncEvent*>(event)) {
            owning->Drop();
            ::operator delete(event);
        }
}
