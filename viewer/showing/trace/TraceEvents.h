#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/model/scopes/Timeline.h"
#include "viewer/showing/trace/JsonText.h"

#include <string>
#include <vector>

/// A dump in the trace-event form, a JSON object that Perfetto and chrome://tracing open:
///
///     {"displayTimeUnit": "ms", "otherData": {...}, "traceEvents": [...]}
///
/// "traceEvents" holds, in this order for each thread, all with "pid" 1 and "tid" its id:
///
/// - one event "M" named "thread_name"; args: "name". A thread without a name is "thread 264".
/// - its timeline, what is in a scope behind the scope itself:
///   - a scope is "X": "name" is "Class.Function", "cat" "scope", "ts" and "dur". A scope that was
///     entered before the dump begins with it, and has "lostBegin": true among its args; one that
///     was not left has "lostEnd": true, and ends with the next scope around it that was, or with
///     the dump.
///   - anything else is "i" with "s": "t": "name" tells kind and parameter, such as "Root_error
///     RunsDry" or "State_change to Running", "cat" is the category of EventKind, "ts".
///
/// The args of both: "depth", the number of scopes around it; "object", such as
/// "0x000000001D2C5A40", unless it is null; "objectName", if it has one; "param1" and "param2",
/// raw, unless both are 0 or the second is the line. Besides, of events: "place", which is
/// "Class.Function", if there is one; "code" of errors that have one; "state" of changes of state;
/// "line" where there is one.
///
/// Times are whole microseconds, as in the dump, where the oldest record is 0; should one be
/// earlier all are moved to begin with 0. Slices of a thread nest strictly.
///
/// "otherData" tells about the dump, filtered or not: "source", the name of its file; "records",
/// their number; "begin" and "end", in microseconds as above; "origin", the time of the dump that
/// is 0 here; "start", when the recorder was started, and "wallClock", what the clock showed then,
/// such as "2026-11-21 07:53:48.377", local time of the writer, or "(unknown)"; "findings", an
/// array of sentences.
class TraceEvents
{
public:
    static std::string Compose(const Dump& dump, const std::vector<Timeline>& timelines,
                               const std::string& source);

private:
    TraceEvents(const Dump& dump, std::string& text);

    void AddAll(const std::vector<Timeline>& timelines, const std::string& source);
    void AddAbout(const std::string& source);
    void AddTimeline(const Timeline& timeline);
    void AddThreadName(std::int32_t threadId);
    void AddScope(const TimelineEntry& scope);
    void AddEvent(const TimelineEntry& event);
    void AddTrack(std::int32_t threadId);
    void AddArguments(const TimelineEntry& entry);

    const Dump& dump;
    const std::int64_t origin; // time 0 of the trace on the axis of the dump
    JsonText json;
};
