#pragma once

#include "engine/MDesyncEvent.h"
#include "engine/MDesyncEventScheduler.h"
#include "module/ModuleCommandProcessor.h"
#include "varek/Callable.h"

#include <memory>
#include <type_traits>
#include <utility>

// Events, written where they are raised:
//
//     varek::Post([listener, text = std::move(text)] { listener->OnDone(text); });
//
// Without a scheduler in front, the module's own is meant, which is started if need be.
//
// Threads: the function runs on the scheduler thread, in its turn; any thread may post, and goes on
// at once. It is run once or not at all.
//
// Lifetime: the function owns its captures. They are destroyed on the scheduler thread when it has
// run, and where it is dropped: by whoever destroys the scheduler (for the module's: unloads the
// module) when a stop came first.
//
// Failure: what the function raises is recorded and dismissed, a standard exception of another kind
// than `MException` as "varek.Post:StandardException". `Post` itself raises exhausted memory.

namespace varek
{

namespace detail
{

/// Runs the function that `context` stands for.
void RunPosted(void (*work)(void* context), void* context);

/// Schedules the event, or frees it.
void Schedule(MDesyncEventScheduler& scheduler, MDesyncEvent* event);

/// An event made from a function. The scheduler frees it without a destructor, so it lets go of the
/// function itself.
template <class F>
class PostedFunction final : public MOwningDesyncEvent
{
public:
    explicit PostedFunction(F&& function) : function(std::move(function)) {}
    explicit PostedFunction(const F& function) : function(function) {}

    void Fire() override
    {
        const Owner owner = {*this};
        RunPosted([](void* posted) { (*static_cast<F*>(posted))(); }, &function);
    }

    void Drop() override { function.~F(); }

    struct Delete {
        void operator()(PostedFunction* event) const
        {
            event->Drop();
            ::operator delete(event);
        }
    };

private:
    struct Owner {
        PostedFunction& event;
        ~Owner() { event.Drop(); }
    };

    F function;
};

inline MDesyncEventScheduler& ModuleScheduler()
{
    return *ModuleCommandProcessor::GetInstance().GetDesyncScheduler();
}

template <class T>
using IsEvent =
    std::is_base_of<MDesyncEvent, typename std::remove_pointer<typename std::decay<T>::type>::type>;

template <class T>
using IfEvent = typename std::enable_if<IsEvent<T>::value>::type;

template <class T>
using IfFunction = typename std::enable_if<
    !IsEvent<T>::value &&
    !std::is_base_of<MDesyncEventScheduler, typename std::decay<T>::type>::value>::type;

} // namespace detail

/// @{
/// Has the function called on the scheduler thread. Takes one allocation.
template <class F, class = detail::IfFunction<F>>
void Post(MDesyncEventScheduler& scheduler, F&& function)
{
    typedef detail::PostedFunction<typename std::decay<F>::type> Event;
    static_assert(sizeof(detail::Callable<typename std::decay<F>::type>) != 0, "");
    std::unique_ptr<Event, typename Event::Delete> event(new Event(std::forward<F>(function)));
    scheduler.ScheduleDesyncEvent(event.get());
    event.release();
}

template <class F, class = detail::IfFunction<F>>
void Post(F&& function)
{
    Post(detail::ModuleScheduler(), std::forward<F>(function));
}
/// @}

/// @{
/// Hands over a hand-written event, made with `new`, also where this raises. One that owns
/// something does not compile, since it would leak.
template <class Event, class = detail::IfEvent<Event>>
void Post(MDesyncEventScheduler& scheduler, Event* event)
{
    static_assert(std::is_trivially_destructible<Event>::value ||
                      std::is_same<Event, MDesyncEvent>::value ||
                      std::is_base_of<MOwningDesyncEvent, Event>::value,
                  "this event owns something that would leak, since an event is freed without its "
                  "destructor being run: let it hold numbers and pointers only, or post a lambda, "
                  "which may own what it captures");
    detail::Schedule(scheduler, event);
}

template <class Event, class = detail::IfEvent<Event>>
void Post(Event* event)
{
    Post(detail::ModuleScheduler(), event);
}
/// @}

} // namespace varek
