#pragma once

#include "viewer/model/Recording.h"

#include <string>
#include <vector>

/// The timelines as text: a heading for each thread, then a line for each scope and event, indented
/// by depth, with its time and, of a scope, its duration.
class ScopeTree
{
public:
    static std::string Compose(const Recordings& recordings);

private:
    void AddTimeline(const Timeline& timeline, const Recording& recording);
    void AddEntry(const TimelineEntry& entry, const DumpNames& names);

    std::string text;
};
