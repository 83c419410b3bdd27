#pragma once

#include "viewer/model/flows/ErrorFates.h"
#include "viewer/model/flows/Flow.h"
#include "viewer/model/records/RecordFilter.h"
#include "viewer/model/scopes/Timeline.h"

/// A dump and what its records amount to. It can be moved, but not copied: all in it refers to its
/// records.
struct Recording {
    Recording(Dump read, std::string source);

    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    Recording(Recording&&) = default;
    Recording& operator=(Recording&&) = default;

    /// Leaves what passes: of the timelines and flows by removing the rest, of the records by
    /// `Passes`. What became of errors stays known of all.
    void Keep(const RecordFilter& wanted);

    bool Passes(const DumpRecord& record) const
    {
        return filter.Passes(record, dump.names) && filter.IsInTime(record.time, record.time);
    }

    Dump dump;
    std::string source; ///< name of the file, as it can be shown
    std::string label;  ///< in front of its threads, where there are several
    std::vector<Timeline> timelines;
    std::vector<Flow> flows;
    ErrorFates errors;
    RecordFilter filter;
};

/// Several at once, on one axis of time.
typedef std::vector<Recording> Recordings;
