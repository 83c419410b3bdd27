// What it costs to hand work to the engine's threads.

#include "bench/HandWrittenExchange.h"
#include "bench/support/EngineParts.h"
#include "bench/support/HeapCount.h"
#include "bench/support/Report.h"
#include "engine/MThreadSafeFifo.h"

#include <memory>
#include <new>
#include <vector>

namespace
{

typedef std::vector<MDesyncEvent*> Events;

void MakeEvents(Events& events, unsigned count)
{
    events.clear();
    for (unsigned i = 0; i < count; ++i)
        events.push_back(new EmptyEvent);
}

void CompareCommand(EngineParts& parts)
{
    HandWrittenExchange exchange;
    const Comparison::Work executeByHand = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            exchange.Execute();
    };
    Comparison("empty command : exchange by hand", 20, parts.Executing(), executeByHand)
        .AtMost(1.1);
}

void CompareEvent(IdleScheduler& scheduler)
{
    const unsigned burst = 100;
    HandWrittenQueue queue;
    Events events;
    const Comparison::Work schedule = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            scheduler.ScheduleDesyncEvent(events[i]);
    };
    const Comparison::Work pushByHand = [&](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            queue.Put(events[i]);
    };
    const auto startAfresh = [&] {
        scheduler.Drain();
        while (void* const event = queue.Get())
            ::operator delete(event);
        MakeEvents(events, burst);
    };
    Comparison("event scheduled : locked push and SetEvent", burst, schedule, pushByHand)
        .Before(startAfresh)
        .AtMost(1.1);
}

std::size_t AllocationsOfQueue(unsigned count)
{
    EmptyCommand command((MExceptionSlot()));
    MCommand* taken = nullptr;
    MThreadSafeFifo<MCommand*, MCommand*> queue;
    for (int i = 0; i < 2; ++i)
        queue.Put(&command);
    queue.Get(taken);

    const std::size_t before = HeapCount::Allocations();
    for (unsigned i = 0; i < count; ++i) {
        queue.Put(&command);
        queue.Get(taken);
        queue.Get(taken);
        queue.Put(&command);
    }
    return HeapCount::Allocations() - before;
}

/// The commands are made beforehand and want no failures back, so nothing of this is the caller's.
std::size_t AllocationsOfCommands(MCommandProcessor& processor, unsigned count)
{
    std::vector<std::auto_ptr<MCommandSynchronous>> commands(count);
    for (auto& command : commands)
        command.reset(new EmptyCommand(MExceptionSlot()));

    const std::size_t before = HeapCount::Allocations();
    for (auto& command : commands)
        processor.ExecuteSynchronously(command);
    return HeapCount::Allocations() - before;
}

std::size_t AllocationsOfEvents(IdleScheduler& scheduler, unsigned count)
{
    scheduler.Drain();
    Events events;
    MakeEvents(events, count);

    const std::size_t before = HeapCount::Allocations();
    for (MDesyncEvent* event : events) {
        scheduler.ScheduleDesyncEvent(event);
        scheduler.Drain();
    }
    return HeapCount::Allocations() - before;
}

void ShowAllocations(const char* what, std::size_t allocations)
{
    Report::FigureAtMost(what, static_cast<double>(allocations), "allocations", 0);
}

} // namespace

int main()
{
    EngineParts parts;

    Report::Columns("Handing over");
    CompareCommand(parts);
    CompareEvent(parts.scheduler);

    Report::Heading("Allocations in a steady state");
    ShowAllocations("queue, put and taken 1000 times", AllocationsOfQueue(1000));
    ShowAllocations("1000 events", AllocationsOfEvents(parts.scheduler, 1000));
    ShowAllocations("1000 commands", AllocationsOfCommands(parts.processor, 1000));
}
