#include "varek/Post.h"

#include "varek/Errors.h"

namespace varek
{

void detail::RunPosted(void (*work)(void* context), void* context)
{
    try {
        work(context);
    } catch (std::exception& exception) {
        static TracedLocation location(L"varek", L"Post");
        ThrowAsMException(location, exception);
    }
}

void detail::Schedule(MDesyncEventScheduler& scheduler, MDesyncEvent* event)
{
    try {
        scheduler.ScheduleDesyncEvent(event);
    } catch (...) {
        ::operator delete(event);
        throw;
    }
}

} // namespace varek
