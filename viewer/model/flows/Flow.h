#pragma once

#include "viewer/model/scopes/Timeline.h"

/// Work that one thread hands to another: a command from `ExecuteSynchronously` or a `Call` to its
/// `Execute`, an event from `ScheduleDesyncEvent` to its `Fire`.
struct Flow {
    bool isCommand; ///< else it is an event
    TimelineEntry from;
    TimelineEntry to;

    /// How long it stood in the queue.
    std::int64_t Wait() const { return to.begin - from.begin; }
};
