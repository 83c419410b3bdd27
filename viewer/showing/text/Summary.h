#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/model/records/RecordFilter.h"
#include "viewer/model/statistics/EventCounts.h"

#include <string>

/// What a dump holds, on a page: its span of time by the recorder's clock and the one on the wall,
/// findings, threads, events by class and kind, and errors as they were raised and dismissed.
class Summary
{
public:
    /// Of the records that pass `filter`; the span of time and the findings are of all.
    static std::string Compose(const Dump& dump, const RecordFilter& filter);

private:
    struct ThreadSpan {
        std::int32_t threadId;
        std::size_t records;
        std::int64_t begin;
        std::int64_t end;
    };

    explicit Summary(const Dump& dump) : dump(dump) {}

    void Count(const DumpRecord& record);
    ThreadSpan& SpanOf(const DumpRecord& record);

    void AddSpan();
    void AddWallClock(std::int64_t time, const std::string& what);
    void AddFindings();
    void AddThreads();
    void AddEvents();
    void AddErrors();
    void AddHeading(const std::string& heading);

    const Dump& dump;
    std::size_t passed = 0;
    std::vector<ThreadSpan> threads; // in order of appearance
    std::unordered_map<std::int32_t, std::size_t> threadPlaces;
    EventCounts events;
    std::vector<const DumpRecord*> errors;
    std::string text;
};
