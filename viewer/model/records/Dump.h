#pragma once

#include "viewer/model/records/DumpNames.h"
#include "viewer/model/records/DumpRecord.h"
#include "viewer/model/records/Findings.h"
#include "viewer/model/records/WallClock.h"

#include <algorithm>
#include <optional>
#include <vector>

/// How a process ended, as a minidump tells it.
struct Crash {
    std::int32_t threadId;
    std::string what; ///< "access violation C0000005 at survey.dll+1A2B, reading 0"
};

/// A dump as read: what happened, oldest first, and what is known beside it.
struct Dump {
    std::vector<DumpRecord> records; ///< in order of time
    DumpNames names;
    std::int64_t reference = 0;     ///< when the recorder was started, on the axis of the records
    std::optional<WallClock> start; ///< the wall clock at that moment
    std::string recorder;           ///< module whose recorder it is, where a minidump tells
    std::string process;            ///< program and system, likewise
    std::optional<Crash> crash;
    std::vector<std::int32_t> livingThreads; ///< empty where that is not known
    Findings findings;

    /// Times of the first and the last record; 0 when there is none.
    std::int64_t Begin() const { return records.empty() ? 0 : records.front().time; }
    std::int64_t End() const { return records.empty() ? 0 : records.back().time; }

    /// Whether a thread is known to have ended.
    bool HasEnded(std::int32_t threadId) const
    {
        return !livingThreads.empty() && std::find(livingThreads.begin(), livingThreads.end(),
                                                   threadId) == livingThreads.end();
    }

    /// The wall clock at a time of the dump, "(unknown)" when there is none.
    std::string WallClockAt(std::int64_t time) const
    {
        return start ? WallClock(MomentAt(time)).Text() : "(unknown)";
    }

    /// The same in microseconds since 1970, as if the recorder had been started then where there is
    /// none.
    std::int64_t MomentAt(std::int64_t time) const
    {
        return start.value_or(WallClock(0)).SinceEpoch() + time - reference;
    }
};
