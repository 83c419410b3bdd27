#include "viewer/model/scopes/TimelineBuilder.h"

#include "viewer/model/records/EventKind.h"

#include <utility>

TimelineBuilder::ScopeKey TimelineBuilder::ScopeKeyOf(const DumpRecord& record)
{
    return KeyOf(record.classId, record.pointId);
}

// Half-written records have no thread, and nothing of them pairs up.
void TimelineBuilder::Add(const DumpRecord& record)
{
    const bool pairsUp = record.threadId != 0;
    if (pairsUp && record.kind == EventKind::ScopePush)
        Push(record);
    else if (pairsUp && record.kind == EventKind::ScopePop)
        Pop(record);
    else
        AddEntry(record, false);
}

// Scopes that were entered before the dump are known only when they are left: until then depths are
// too small by their number, and wrap around.
void TimelineBuilder::AddEntry(const DumpRecord& record, bool isScope)
{
    const std::size_t depth = open.size() - lostBegins.size();
    timeline.entries.push_back(
        {&record, record.time, record.time, 0, static_cast<std::uint32_t>(depth), isScope});
}

void TimelineBuilder::Push(const DumpRecord& record)
{
    AddEntry(record, true);
    open.push_back(timeline.entries.size() - 1);
    ++openByKey[ScopeKeyOf(record)];
}

void TimelineBuilder::Pop(const DumpRecord& record)
{
    const ScopeKey key = ScopeKeyOf(record);
    const auto opened = openByKey.find(key);
    if (opened == openByKey.end() || opened->second == 0) {
        PopLostPush(record);
        return;
    }
    while (ScopeKeyOf(*timeline.entries[open.back()].record) != key)
        CloseInnermost(record.time, true);
    CloseInnermost(record.time, false);
}

void TimelineBuilder::PopLostPush(const DumpRecord& record)
{
    if (open.empty()) {
        const std::size_t depth = ~lostBegins.size(); // one less than what it holds
        lostBegins.push_back(
            {&record, dumpBegin, record.time, 0, static_cast<std::uint32_t>(depth), true, true});
    } else {
        AddEntry(record, false);
        ++strayEnds;
    }
}

void TimelineBuilder::CloseInnermost(std::int64_t time, bool lostEnd)
{
    TimelineEntry& scope = timeline.entries[open.back()];
    open.pop_back();
    --openByKey[ScopeKeyOf(*scope.record)];
    scope.end = time;
    scope.self += scope.Duration();
    scope.lostEnd = lostEnd;
    lostEnds += lostEnd;
    if (!open.empty())
        timeline.entries[open.back()].self -= scope.Duration();
}

Timeline TimelineBuilder::Finish(std::int64_t dumpEnd, Findings& findings)
{
    for (; !open.empty(); CloseInnermost(dumpEnd, true))
        timeline.entries[open.back()].isOpen = true;
    timeline.entries.insert(timeline.entries.begin(), lostBegins.rbegin(), lostBegins.rend());
    for (TimelineEntry& entry : timeline.entries)
        entry.depth += static_cast<std::uint32_t>(lostBegins.size());

    findings.lostBegins += lostBegins.size();
    findings.lostEnds += lostEnds;
    findings.strayEnds += strayEnds;
    return std::move(timeline);
}
