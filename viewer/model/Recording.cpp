#include "viewer/model/Recording.h"

#include "viewer/model/flows/Flows.h"
#include "viewer/model/scopes/Timelines.h"

#include <algorithm>

Recording::Recording(Dump read, std::string source)
    : dump(std::move(read)), source(std::move(source)), timelines(Timelines::Of(dump)),
      flows(Flows::Of(timelines, dump.names)), errors(dump.records, flows)
{
}

void Recording::Keep(const RecordFilter& wanted)
{
    filter = wanted;
    if (filter.WantsAll())
        return;
    Timelines::Keep(filter, dump.names, timelines);
    const auto passes = [&](const TimelineEntry& entry) {
        return filter.Passes(*entry.record, dump.names) && filter.IsInTime(entry.begin, entry.end);
    };
    const auto goes = [&](const Flow& flow) { return !passes(flow.from) || !passes(flow.to); };
    flows.erase(std::remove_if(flows.begin(), flows.end(), goes), flows.end());
}
