#include "fuzz/LogRules.h"

#include "fuzz/TraceRules.h"
#include "viewer/showing/text/DiffReport.h"
#include "viewer/showing/text/RecordList.h"
#include "viewer/showing/text/ScopeTree.h"
#include "viewer/showing/text/Summary.h"
#include "viewer/showing/trace/TraceEvents.h"

#include <cstdio>
#include <cstdlib>

namespace
{

bool IsNested(const std::vector<Timeline>& timelines)
{
    for (const Timeline& timeline : timelines) {
        std::size_t depth = 0; // of the next entry at most
        for (const TimelineEntry& entry : timeline.entries) {
            if (entry.depth > depth)
                return false;
            depth = entry.depth + entry.isScope;
        }
    }
    return true;
}

std::string BrokenRule(Dump dump)
{
    const std::size_t records = dump.records.size();
    Recordings recordings;
    recordings.emplace_back(std::move(dump), "fuzz");
    ScopeTree::Compose(recordings);
    Summary::Compose(recordings);
    RecordList::Compose(recordings);
    DiffReport::Compose(recordings, recordings);
    const std::string broken = BrokenTraceRule(TraceEvents::Compose(recordings), records);
    if (!broken.empty())
        return broken;

    RecordFilter filter;
    filter.from = recordings[0].dump.Begin() + 1;
    filter.className = "Pump";
    recordings[0].Keep(filter);
    return IsNested(recordings[0].timelines) ? "" : "depth of what a filter leaves";
}

} // namespace

void CheckRules(Dump dump)
{
    const std::string broken = BrokenRule(std::move(dump));
    if (broken.empty())
        return;
    std::fprintf(stderr, "broken rule: %s\n", broken.c_str());
    std::abort();
}
