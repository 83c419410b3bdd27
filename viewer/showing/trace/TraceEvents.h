#pragma once

#include "viewer/model/Recording.h"
#include "viewer/showing/data/JsonText.h"

#include <string>

/// Dumps in the trace-event form, a JSON object that Perfetto and chrome://tracing open:
///
///     {"displayTimeUnit": "ms", "otherData": {...}, "traceEvents": [...]}
///
/// "traceEvents" holds, in this order for each thread, all with "pid" 1, of a second dump 2 and so
/// on, and "tid" its id:
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
/// "line" where there is one; "dismissed" of an error, the "ts" of what dismissed it; "dismisses"
/// of that, the "ts" of the first error that it ended.
///
/// Behind all that stand the flows, from the call of a command to its execution and from the
/// scheduling of an event to its firing: two events each, "s" and "f", with "name" "command" or
/// "event", "cat" "flow", "bp" "e", a common "id", and the "ts" and thread of the scope or event
/// that they bind to. The time between is the wait in the queue.
///
/// Times are whole microseconds, as in the dump, where the oldest record is 0; should one be
/// earlier all are moved to begin with 0. Slices of a thread nest strictly.
///
/// "otherData" tells about the dumps, filtered or not: "source", the names of their files;
/// "records", their number; "begin" and "end", in microseconds as above; "origin", the time of the
/// dump that is 0 here; "start", when the recorder was started, and "wallClock", what the clock
/// showed then, such as "2026-11-21 07:53:48.377", local time of the writer, or "(unknown)", both
/// of the first dump; "findings", an array of sentences.
class TraceEvents
{
public:
    static std::string Compose(const Recordings& recordings);

private:
    explicit TraceEvents(const Recordings& recordings);

    void AddAll();
    void AddAbout();
    void AddRecording(const Recording& recording);
    void AddTimeline(const Timeline& timeline);
    void AddThreadName(std::int32_t threadId);
    void AddScope(const TimelineEntry& scope);
    void AddEvent(const TimelineEntry& event);
    void AddTrack(std::int32_t threadId);
    void AddArguments(const TimelineEntry& entry);
    void AddPartner(const DumpRecord& error);
    void AddFlow(const Flow& flow);
    void AddFlowEnd(const Flow& flow, const char* phase, const TimelineEntry& entry);

    const Recordings& recordings;
    std::int64_t begin = 0;
    std::int64_t end = 0;
    std::int64_t origin = 0; // time 0 of the trace on the axis of the dumps
    std::int64_t flows = 0;  // so far
    std::int64_t process = 0;
    const Recording* recording = nullptr; // at hand, number `process`
    JsonText json;
};
