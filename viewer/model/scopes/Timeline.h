#pragma once

#include "viewer/model/records/DumpRecord.h"

#include <cstddef>
#include <vector>

/// A scope, or a single event.
struct TimelineEntry {
    const DumpRecord* record; ///< a scope's is its push, or its pop when the push is lost
    std::int64_t begin;
    std::int64_t end;    ///< of an event the same as `begin`
    std::int64_t self;   ///< of a scope: how long it was without those directly in it
    std::uint32_t depth; ///< the number of scopes around it
    bool isScope = false;
    bool lostBegin = false; ///< the scope was entered before the oldest record of the dump
    bool lostEnd = false;   ///< the scope was not left, or the record of that is lost
    bool isOpen = false;    ///< the thread was still in the scope when the dump was taken

    std::int64_t Duration() const { return end - begin; }

    /// Whether both its ends are in the dump, so that its duration is known.
    bool IsWhole() const { return isScope && !lostBegin && !lostEnd; }
};

/// What happened on one thread: scopes and events as they began, so that what is in a scope stands
/// behind it and one deeper.
struct Timeline {
    std::int32_t threadId;
    std::vector<TimelineEntry> entries;
};
