#include "viewer/model/flows/Flows.h"

#include "viewer/model/records/EventKind.h"

#include <algorithm>
#include <limits>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace
{

enum class Role { None, Call, Execution, Schedule, Burst, Firing };

/// What a place of the code does for a flow, looked up once for each.
class Roles
{
public:
    explicit Roles(const DumpNames& names) : names(names) {}

    Role Of(const DumpRecord& record)
    {
        const auto [known, isNew] =
            roles.try_emplace(KeyOf(record.classId, record.pointId), Role::None);
        if (isNew)
            known->second = ByName(names.Class(record), names.Function(record));
        return known->second;
    }

private:
    static Role ByName(const std::string& className, const std::string& function)
    {
        if ((className == "MCommandProcessor" && function == "ExecuteSynchronously") ||
            (className == "varek" && function == "Call"))
            return Role::Call;
        if (className == "MDesyncEventScheduler" && function == "ScheduleDesyncEvent")
            return Role::Schedule;
        if (className == "MDesyncEventScheduler" && function == "OnSchedulerEvent")
            return Role::Burst;
        return function == "Execute" ? Role::Execution
               : function == "Fire"  ? Role::Firing
                                     : Role::None;
    }

    const DumpNames& names;
    std::unordered_map<std::uint64_t, Role> roles;
};

typedef std::vector<const TimelineEntry*> Entries;

void SortByBegin(Entries& entries)
{
    std::stable_sort(entries.begin(), entries.end(),
                     [](const TimelineEntry* one, const TimelineEntry* other) {
                         return one->begin < other->begin;
                     });
}

/// From calls to the executions of their commands. A call returns as soon as its command has been
/// executed, so this is the last that ended within the call and, as queues go, before the one of
/// the next call. It is looked for from the end, since there can be commands that nobody waits for.
class Commands
{
public:
    void AddCall(const TimelineEntry& call) { calls.push_back(&call); }

    /// In order of each thread. An `Execute` within another is no command of a queue.
    void AddExecution(const TimelineEntry& execution)
    {
        Entries& executions = executionsOfThreads[execution.record->threadId];
        if (executions.empty() || executions.back()->end <= execution.begin)
            executions.push_back(&execution);
    }

    void AddFlowsTo(std::vector<Flow>& flows)
    {
        SortByBegin(calls);
        for (auto call = calls.rbegin(); call != calls.rend(); ++call) {
            if (const TimelineEntry* const execution = TakeLastWithin(**call))
                flows.push_back({true, **call, *execution});
        }
    }

private:
    /// The execution that ended last within the call, on any thread but the caller's. Those behind
    /// it on its thread are of no earlier call.
    const TimelineEntry* TakeLastWithin(const TimelineEntry& call)
    {
        const TimelineEntry* last = nullptr;
        Entries* served = nullptr;
        for (auto& [threadId, executions] : executionsOfThreads) {
            const auto end = EndWithin(call, executions);
            const bool isWithin = threadId != call.record->threadId && end != executions.begin() &&
                                  (*std::prev(end))->begin >= call.begin;
            if (isWithin && (!last || (*std::prev(end))->end > last->end)) {
                last = *std::prev(end);
                served = &executions;
            }
        }
        if (last)
            served->erase(std::prev(EndWithin(call, *served)), served->end());
        return last;
    }

    static Entries::iterator EndWithin(const TimelineEntry& call, Entries& executions)
    {
        return std::upper_bound(
            executions.begin(), executions.end(), call.end,
            [](std::int64_t end, const TimelineEntry* execution) { return end < execution->end; });
    }

    Entries calls;
    std::map<std::int32_t, Entries> executionsOfThreads;
};

/// From the scheduling of events to their firing, in order. What was scheduled before a burst began
/// and has not been fired when the next one begins has left no record of its firing.
class Events
{
public:
    void AddSchedule(const TimelineEntry& schedule) { schedules.push_back(&schedule); }

    /// Bursts and what is in them, in order of each thread.
    void AddBurst(const TimelineEntry& entry)
    {
        burst = &entry;
        firing = nullptr;
        steps.push_back(burst);
        bursts.insert(burst);
    }

    /// The marks that one event makes while it is fired count once.
    void AddMark(const TimelineEntry& mark)
    {
        const bool isInBurst =
            burst && burst->record->threadId == mark.record->threadId && mark.begin <= burst->end;
        if (!isInBurst || (firing && IsOfFiring(mark)))
            return;
        firing = &mark;
        steps.push_back(firing);
    }

    void AddFlowsTo(std::vector<Flow>& flows)
    {
        SortByBegin(schedules);
        SortByBegin(steps);
        auto schedule = schedules.begin();
        std::int64_t burstBegin = std::numeric_limits<std::int64_t>::min();
        for (const TimelineEntry* step : steps) {
            if (bursts.count(step) != 0) {
                while (schedule != schedules.end() && (*schedule)->begin < burstBegin)
                    ++schedule;
                burstBegin = step->begin;
            } else if (schedule != schedules.end() && (*schedule)->begin <= step->begin) {
                flows.push_back({false, **schedule++, *step});
            }
        }
    }

private:
    bool IsOfFiring(const TimelineEntry& mark) const
    {
        if (firing->isScope)
            return mark.begin <= firing->end;
        return !mark.isScope && mark.record->object == firing->record->object &&
               mark.record->classId == firing->record->classId;
    }

    Entries schedules;
    Entries steps; // bursts and firings
    std::unordered_set<const TimelineEntry*> bursts;
    const TimelineEntry* burst = nullptr;
    const TimelineEntry* firing = nullptr;
};

bool IsTimingPoint(const TimelineEntry& entry)
{
    return entry.record->kind == EventKind::TimingPoint;
}

} // namespace

std::vector<Flow> Flows::Of(const std::vector<Timeline>& timelines, const DumpNames& names)
{
    Roles roles(names);
    Commands commands;
    Events events;
    for (const Timeline& timeline : timelines) {
        for (const TimelineEntry& entry : timeline.entries) {
            const Role role = roles.Of(*entry.record);
            if (role == Role::Schedule && (entry.isScope || IsTimingPoint(entry)))
                events.AddSchedule(entry);
            else if (role == Role::Firing)
                events.AddMark(entry);
            else if (role == Role::Burst && entry.isScope)
                events.AddBurst(entry);
            else if (role == Role::Call && entry.isScope)
                commands.AddCall(entry);
            else if (role == Role::Execution && entry.isScope)
                commands.AddExecution(entry);
        }
    }
    std::vector<Flow> flows;
    commands.AddFlowsTo(flows);
    events.AddFlowsTo(flows);
    return flows;
}
