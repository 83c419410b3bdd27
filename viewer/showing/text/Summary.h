#pragma once

#include "viewer/model/Recording.h"
#include "viewer/model/statistics/EventCounts.h"

#include <string>

/// What dumps hold, on a page: what was going on at the end, findings, the span of time by the
/// recorder's clock and the one on the wall, errors, what took long, threads, and events by class.
class Summary
{
public:
    /// Of the records that pass the filters; the span of time and the findings are of all.
    static std::string Compose(const Recordings& recordings);

private:
    struct ThreadSpan {
        const Recording* recording;
        std::int32_t threadId;
        std::size_t records;
        std::int64_t begin;
        std::int64_t end;
    };

    struct ErrorCount {
        std::size_t raised = 0;
        std::size_t dismissed = 0;
        std::int64_t latest = 0;
        std::string what;
    };

    explicit Summary(const Recordings& recordings) : recordings(recordings) {}

    void CountAll();
    void Count(const Recording& recording, const DumpRecord& record);
    void CountError(const Recording& recording, const DumpRecord& error);

    void AddSpan();
    void AddWallClocks(const Recording& recording);
    void AddFindings(const Recording& recording);
    void AddErrors();
    void AddFunctions();
    void AddLongest();
    void AddThreads();
    void AddEvents();
    void AddHeading(const std::string& heading);

    const Recordings& recordings;
    std::size_t records = 0;
    std::size_t passed = 0;
    std::vector<ThreadSpan> threads; // in order of appearance
    EventCounts events;
    std::map<std::string, ErrorCount> errors;
    std::string text;
};
