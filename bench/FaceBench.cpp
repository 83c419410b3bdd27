// What the face costs above what it stands on.

#include "bench/support/Comparison.h"
#include "bench/support/HeapCount.h"
#include "bench/support/Report.h"
#include "foundation/MException.h"
#include "varek/Call.h"
#include "varek/Post.h"

#include <windows.h>

namespace
{

class EmptyCommand : public MCommandSynchronous
{
public:
    explicit EmptyCommand(const MExceptionSlot& slot) : MCommandSynchronous(slot) {}

protected:
    void Execute() override {}
};

class EmptyEvent final : public MDesyncEvent
{
public:
    void Fire() override {}
};

/// A scheduler without a running thread, so that nobody competes with the one who raises events.
class IdleScheduler : public MDesyncEventScheduler
{
public:
    IdleScheduler() : MDesyncEventScheduler(nullptr) {}

    void Drain() { OnSchedulerEvent(); }
};

void CompareCalls(MCommandProcessor& processor)
{
    const MExceptionSlot slot(std::auto_ptr<MException>(new MException));
    const Comparison::Work call = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            varek::Call(processor, [] {});
    };
    const Comparison::Work execute = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            processor.ExecuteSynchronously(
                std::auto_ptr<MCommandSynchronous>(new EmptyCommand(slot)));
    };
    Comparison("Call : ExecuteSynchronously", 20, call, execute).AtMost(1.05);
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
    // As told in EngineBench: on one processor both sides are placed alike.
    SetProcessAffinityMask(GetCurrentProcess(), 1);

    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    IdleScheduler scheduler;

    Report::Columns("The face");
    CompareCalls(processor);
    ComparePosts(scheduler);

    Report::Heading("Allocations");
    ShowAllocations("a call", [&] { varek::Call(processor, [] {}); });
    ShowAllocations("a posted function", [&] {
        varek::Post(scheduler, [] {});
        scheduler.Drain();
    });
    processor.Stop();
}
