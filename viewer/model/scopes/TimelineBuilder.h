#pragma once

#include "viewer/model/records/Findings.h"
#include "viewer/model/scopes/Timeline.h"

#include <unordered_map>

/// Makes the timeline of one thread from its records.
///
/// A pop ends the innermost open scope of its class and function; the object does not count, since
/// threads in one function share its location. Scopes within that one have lost their own pops and
/// end with it. A pop that fits no open scope has lost its push to the ring if no scope is open at
/// all: the scope then holds everything so far, from the first record of the dump on. Otherwise it
/// is itself damaged, and stays an event.
class TimelineBuilder
{
public:
    TimelineBuilder(std::int32_t threadId, std::int64_t dumpBegin)
        : dumpBegin(dumpBegin), timeline{threadId, {}}
    {
    }

    /// Records come in order of time, and outlive the timeline.
    void Add(const DumpRecord& record);

    /// Scopes still open last until the end of the dump. What is amiss is added to `findings`.
    Timeline Finish(std::int64_t dumpEnd, Findings& findings);

private:
    using ScopeKey = std::uint64_t;

    static ScopeKey ScopeKeyOf(const DumpRecord& record);
    void AddEntry(const DumpRecord& record, bool isScope);
    void Push(const DumpRecord& record);
    void Pop(const DumpRecord& record);
    void PopLostPush(const DumpRecord& record);
    void CloseInnermost(std::int64_t time, bool lostEnd);

    const std::int64_t dumpBegin;
    Timeline timeline;
    std::vector<TimelineEntry> lostBegins; // innermost first
    std::vector<std::size_t> open;         // among the entries, innermost last
    std::unordered_map<ScopeKey, std::size_t> openByKey;
    std::size_t lostEnds = 0;
    std::size_t strayEnds = 0;
};
