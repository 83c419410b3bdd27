#include "viewer/showing/trace/TraceEvents.h"

#include "viewer/forms/TextForms.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/text/Description.h"

#include <algorithm>

namespace
{

constexpr std::size_t usualEventLength = 200;

} // namespace

std::string TraceEvents::Compose(const Recordings& recordings)
{
    TraceEvents trace(recordings);
    trace.AddAll();
    return trace.json.Result();
}

TraceEvents::TraceEvents(const Recordings& recordings)
    : recordings(recordings), begin(recordings.front().dump.Begin())
{
    std::size_t records = 0;
    for (const Recording& each : recordings) {
        records += each.dump.records.size();
        begin = std::min(begin, each.dump.Begin());
        end = std::max(end, each.dump.End());
    }
    origin = std::min<std::int64_t>(begin, 0);
    json.Reserve(records * usualEventLength);
}

void TraceEvents::AddAll()
{
    json.BeginObject().Key("displayTimeUnit").Text("ms");
    AddAbout();
    json.Key("traceEvents").BeginArray();
    for (const Recording& each : recordings)
        AddRecording(each);
    process = 0;
    for (const Recording& each : recordings) {
        ++process;
        for (const Flow& flow : each.flows)
            AddFlow(flow);
    }
    json.EndArray().EndObject();
}

void TraceEvents::AddAbout()
{
    const Dump& first = recordings.front().dump;
    std::string sources;
    std::size_t records = 0;
    for (const Recording& each : recordings) {
        sources += (sources.empty() ? "" : ", ") + each.source;
        records += each.dump.records.size();
    }
    json.Key("otherData").BeginObject();
    json.Key("source").Text(sources);
    json.Key("records").Number(static_cast<std::int64_t>(records));
    json.Key("begin").Number(begin - origin);
    json.Key("end").Number(end - origin);
    json.Key("origin").Number(origin);
    json.Key("start").Number(first.reference - origin);
    json.Key("wallClock").Text(first.WallClockAt(first.reference));
    json.Key("findings").BeginArray();
    for (const Recording& each : recordings) {
        for (const std::string& sentence : each.dump.findings.Sentences())
            json.Text(sentence);
    }
    json.EndArray().EndObject();
}

void TraceEvents::AddRecording(const Recording& each)
{
    recording = &each;
    ++process;
    for (const Timeline& timeline : each.timelines)
        AddTimeline(timeline);
}

void TraceEvents::AddTimeline(const Timeline& timeline)
{
    AddThreadName(timeline.threadId);
    for (const TimelineEntry& entry : timeline.entries) {
        json.BeginObject();
        if (entry.isScope)
            AddScope(entry);
        else
            AddEvent(entry);
        json.EndObject();
    }
}

void TraceEvents::AddThreadName(std::int32_t threadId)
{
    const std::string& name = recording->dump.names.Thread(threadId);
    const std::string shown = name.empty() ? "thread " + std::to_string(threadId) : name;
    json.BeginObject().Key("name").Text("thread_name").Key("ph").Text("M");
    AddTrack(threadId);
    json.Key("args").BeginObject().Key("name").Text(recording->label + shown);
    json.EndObject().EndObject();
}

void TraceEvents::AddScope(const TimelineEntry& scope)
{
    const DumpRecord& record = *scope.record;
    json.Key("name").Text(Description::Place(record, recording->dump.names));
    json.Key("ph").Text("X").Key("cat").Text("scope");
    json.Key("ts").Number(scope.begin - origin).Key("dur").Number(scope.Duration());
    AddTrack(record.threadId);

    json.Key("args").BeginObject();
    AddArguments(scope);
    if (scope.lostBegin)
        json.Key("lostBegin").Truth(true);
    if (scope.lostEnd)
        json.Key("lostEnd").Truth(true);
    json.EndObject();
}

void TraceEvents::AddEvent(const TimelineEntry& event)
{
    const DumpRecord& record = *event.record;
    const DumpNames& names = recording->dump.names;
    json.Key("name").Text(Description::Event(record, names)).Key("ph").Text("i");
    json.Key("s").Text("t").Key("cat").Text(EventKind::Category(record.kind));
    json.Key("ts").Number(event.begin - origin);
    AddTrack(record.threadId);

    json.Key("args").BeginObject();
    if (EventKind::HasPlace(record.kind))
        json.Key("place").Text(Description::Place(record, names));
    if (EventKind::IsError(record.kind) && record.param1 != 0)
        json.Key("code").Text(names.Parameter(record));
    if (record.kind == EventKind::StateChange)
        json.Key("state").Text(names.Parameter(record));
    if (EventKind::HasLine(record.kind))
        json.Key("line").Number(record.param2);
    if (EventKind::IsError(record.kind))
        AddPartner(record);
    AddArguments(event);
    json.EndObject();
}

void TraceEvents::AddPartner(const DumpRecord& error)
{
    const DumpRecord* const partner = recording->errors.PartnerOf(error);
    if (partner)
        json.Key(ErrorFates::IsRaised(error.kind) ? "dismissed" : "dismisses")
            .Number(partner->time - origin);
}

void TraceEvents::AddTrack(std::int32_t threadId)
{
    json.Key("pid").Number(process).Key("tid").Number(static_cast<std::uint32_t>(threadId));
}

void TraceEvents::AddArguments(const TimelineEntry& entry)
{
    const DumpRecord& record = *entry.record;
    json.Key("depth").Number(entry.depth);
    const std::string& name = recording->dump.names.Object(record);
    if (record.object != 0)
        json.Key("object").Text("0x" + TextForms::Address(record.object));
    if (!name.empty())
        json.Key("objectName").Text(name);
    if (!EventKind::HasLine(record.kind) && (record.param1 != 0 || record.param2 != 0))
        json.Key("param1").Number(record.param1).Key("param2").Number(record.param2);
}

void TraceEvents::AddFlow(const Flow& flow)
{
    ++flows;
    AddFlowEnd(flow, "s", flow.from);
    AddFlowEnd(flow, "f", flow.to);
}

void TraceEvents::AddFlowEnd(const Flow& flow, const char* phase, const TimelineEntry& entry)
{
    json.BeginObject().Key("name").Text(flow.isCommand ? "command" : "event");
    json.Key("cat").Text("flow").Key("ph").Text(phase).Key("bp").Text("e").Key("id").Number(flows);
    json.Key("ts").Number(entry.begin - origin);
    AddTrack(entry.record->threadId);
    json.EndObject();
}
