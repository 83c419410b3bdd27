#pragma once

#include "viewer/model/records/DumpNames.h"
#include "viewer/model/records/DumpRecord.h"
#include "viewer/model/records/Findings.h"
#include "viewer/model/records/WallClock.h"

#include <optional>
#include <vector>

/// A dump as read: what happened, oldest first, and what is known beside it.
struct Dump {
    std::vector<DumpRecord> records; ///< in order of time
    DumpNames names;
    std::int64_t reference = 0;     ///< when the recorder was started, on the axis of the records
    std::optional<WallClock> start; ///< the wall clock at that moment
    Findings findings;

    /// Times of the first and the last record; 0 when there is none.
    std::int64_t Begin() const { return records.empty() ? 0 : records.front().time; }
    std::int64_t End() const { return records.empty() ? 0 : records.back().time; }

    /// The wall clock at a time of the dump, "(unknown)" when there is none.
    std::string WallClockAt(std::int64_t time) const
    {
        return start ? start->After(time - reference).Text() : "(unknown)";
    }
};
