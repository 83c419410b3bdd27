#pragma once

#include "engine/MSchedulerThread.h"
#include "engine/MThreadSafeFifo.h"
#include "foundation/NonCopyable.h"

class MDesyncEvent;

/// Delivers events on a thread of its own: whoever raises one goes on at once, and a slow receiver
/// holds up nobody but the events behind it. Events are fired one after the other, in the order
/// they came, in the multithreaded COM apartment.
///
/// A scheduler is made disabled, and can be enabled and disabled any number of times. What is
/// scheduled while it is disabled waits. Destroying it disables it and drops what is still queued,
/// without freeing it, but for events that own something: those are dropped and freed.
class MDesyncEventScheduler : private Selvan::Utilities::NonCopyable
{
public:
    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    /// `errorHandler` may be null, is not owned, and must outlive the scheduler.
    explicit MDesyncEventScheduler(IThreadErrorHandler* errorHandler);
    ~MDesyncEventScheduler();

    /// Starts the delivery. Raises what `MEngineThread::Start` raises.
    void Enable();

    /// Stops the delivery; when it returns, no event is being fired. It waits for the burst in
    /// progress, so a producer that never pauses delays it without limit. Raises what
    /// `MEngineThread::Flush` and `Stop` raise, "CannotFlushSelf" when called from an event.
    void Disable();

    /// Whether the calling thread is the one that fires the events. `Disable` then raises at once.
    bool IsCurrentThread() const { return schedulerThread.IsCurrentThread(); }

    /// Whether no event can be fired any more before the next `Enable`, the thread being stopped or
    /// dead. Not while another thread is in `Enable` or `Disable`.
    bool HasEnded() const { return schedulerThread.HasEnded(); }

    /// Queues `event`, which the scheduler owns from then on. Any thread, at any time. Raises an
    /// `MErrorOutOfMemory` in an `MException`, and the event then stays the caller's.
    void ScheduleDesyncEvent(MDesyncEvent* event);

protected:
    /// Runs the queue out, on the scheduler thread.
    virtual void OnSchedulerEvent();

private:
    struct Locations;

    void DropOwningEvents();

    MSchedulerThread schedulerThread;
    MThreadSafeFifo<MDesyncEvent*, MDesyncEvent*> eventQueue;
};
