#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/model/scopes/Timeline.h"

#include <string>
#include <vector>

/// The timelines as text: a heading for each thread, then a line for each scope and event, indented
/// by depth, with its time and, of a scope, its duration.
class ScopeTree
{
public:
    static std::string Compose(const Dump& dump, const std::vector<Timeline>& timelines);

private:
    explicit ScopeTree(const DumpNames& names) : names(names) {}

    void AddTimeline(const Timeline& timeline);
    void AddEntry(const TimelineEntry& entry);
    std::string TextOf(const TimelineEntry& entry) const;

    const DumpNames& names;
    std::string text;
};
