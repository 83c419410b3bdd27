#pragma once

#include "viewer/model/records/DumpRecord.h"

#include <cstddef>
#include <vector>

/// A scope, or a single event.
struct TimelineEntry {
    const DumpRecord* record; ///< a scope's is its push, or its pop when the push is lost
    std::int64_t begin;
    std::int64_t end; ///< of an event the same as `begin`
    std::size_t depth;
    bool isScope;
    bool lostBegin; ///< the scope was entered before the oldest record of the dump
    bool lostEnd;   ///< the scope was not left, or the record of that is lost
};

/// What happened on one thread: scopes and events as they began, so that what is in a scope stands
/// behind it and one deeper.
struct Timeline {
    std::int32_t threadId;
    std::vector<TimelineEntry> entries;
};
