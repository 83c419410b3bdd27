#include "viewer/model/scopes/Timelines.h"

#include "viewer/model/scopes/TimelineBuilder.h"

#include <algorithm>

namespace
{

/// Builders by thread, in order of appearance.
class Builders
{
public:
    explicit Builders(std::int64_t dumpBegin) : dumpBegin(dumpBegin) {}

    TimelineBuilder& Of(std::int32_t threadId)
    {
        const auto [place, isNew] = places.try_emplace(threadId, builders.size());
        if (isNew)
            builders.emplace_back(threadId, dumpBegin);
        return builders[place->second];
    }

    std::vector<TimelineBuilder> builders;

private:
    const std::int64_t dumpBegin;
    std::unordered_map<std::int32_t, std::size_t> places;
};

/// Leaves the entries that pass, each as deep as the scopes around it that stay.
void KeepEntries(const RecordFilter& filter, const DumpNames& names,
                 std::vector<TimelineEntry>& entries)
{
    std::vector<std::size_t> scopeDepths; // former ones, of the scopes that stay and are open
    std::size_t kept = 0;
    for (const TimelineEntry& entry : entries) {
        while (!scopeDepths.empty() && scopeDepths.back() >= entry.depth)
            scopeDepths.pop_back();
        if (!filter.Passes(*entry.record, names) || !filter.IsInTime(entry.begin, entry.end))
            continue;
        const std::size_t formerDepth = entry.depth;
        entries[kept] = entry;
        entries[kept++].depth = static_cast<std::uint32_t>(scopeDepths.size());
        if (entry.isScope)
            scopeDepths.push_back(formerDepth);
    }
    entries.resize(kept);
}

} // namespace

std::vector<Timeline> Timelines::Of(Dump& dump)
{
    Builders builders(dump.Begin());
    for (const DumpRecord& record : dump.records)
        builders.Of(record.threadId).Add(record);

    std::vector<Timeline> timelines;
    timelines.reserve(builders.builders.size());
    for (TimelineBuilder& builder : builders.builders)
        timelines.push_back(builder.Finish(dump.End(), dump.findings));
    return timelines;
}

void Timelines::Keep(const RecordFilter& filter, const DumpNames& names,
                     std::vector<Timeline>& timelines)
{
    for (Timeline& timeline : timelines)
        KeepEntries(filter, names, timeline.entries);
    const auto isEmpty = [](const Timeline& timeline) { return timeline.entries.empty(); };
    timelines.erase(std::remove_if(timelines.begin(), timelines.end(), isEmpty), timelines.end());
}
