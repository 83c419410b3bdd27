// What the face costs above what it stands on.

#include "bench/support/EngineParts.h"
#include "bench/support/HeapCount.h"
#include "bench/support/Report.h"
#include "varek/Call.h"
#include "varek/Post.h"

namespace
{

void CompareCalls(EngineParts& parts)
{
    const Comparison::Work call = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            varek::Call(parts.processor, [] {});
    };
    Comparison("Call : ExecuteSynchronously", 20, call, parts.Executing()).AtMost(1.05);
}

void ComparePosts(IdleScheduler& scheduler)
{
    const Comparison::Work post = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            varek::Post(scheduler, [] {});
    };
    const Comparison::Work schedule = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            scheduler.ScheduleDesyncEvent(new EmptyEvent);
    };
    Comparison("Post : ScheduleDesyncEvent", 100, post, schedule)
        .Before([&] { scheduler.Drain(); })
        .AtMost(1.1);
}

template <class Work>
void ShowAllocations(const char* what, Work work)
{
    work();
    const std::size_t before = HeapCount::Allocations();
    work();
    Report::FigureAtMost(what, static_cast<double>(HeapCount::Allocations() - before),
                         "allocations", 1);
}

} // namespace

int main()
{
    EngineParts parts;

    Report::Columns("The face");
    CompareCalls(parts);
    ComparePosts(parts.scheduler);

    Report::Heading("Allocations");
    ShowAllocations("a call", [&] { varek::Call(parts.processor, [] {}); });
    ShowAllocations("a posted function", [&] {
        varek::Post(parts.scheduler, [] {});
        parts.scheduler.Drain();
    });
}
