#include "viewer/showing/trace/TraceEvents.h"

#include "viewer/forms/TextForms.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/text/Description.h"

#include <algorithm>

namespace
{

constexpr std::size_t usualEventLength = 200;

} // namespace

std::string TraceEvents::Compose(const Dump& dump, const std::vector<Timeline>& timelines,
                                 const std::string& source)
{
    std::string text;
    TraceEvents(dump, text).AddAll(timelines, source);
    return text;
}

TraceEvents::TraceEvents(const Dump& dump, std::string& text)
    : dump(dump), origin(std::min<std::int64_t>(dump.Begin(), 0)), json(text)
{
    text.reserve(dump.records.size() * usualEventLength);
}

void TraceEvents::AddAll(const std::vector<Timeline>& timelines, const std::string& source)
{
    json.BeginObject().Key("displayTimeUnit").Text("ms");
    AddAbout(source);
    json.Key("traceEvents").BeginArray();
    for (const Timeline& timeline : timelines)
        AddTimeline(timeline);
    json.EndArray().EndObject();
}

void TraceEvents::AddAbout(const std::string& source)
{
    json.Key("otherData").BeginObject();
    json.Key("source").Text(source);
    json.Key("records").Number(static_cast<std::int64_t>(dump.records.size()));
    json.Key("begin").Number(dump.Begin() - origin);
    json.Key("end").Number(dump.End() - origin);
    json.Key("origin").Number(origin);
    json.Key("start").Number(dump.reference - origin);
    json.Key("wallClock").Text(dump.WallClockAt(dump.reference));
    json.Key("findings").BeginArray();
    for (const std::string& sentence : dump.findings.Sentences())
        json.Text(sentence);
    json.EndArray().EndObject();
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
    const std::string& name = dump.names.Thread(threadId);
    json.BeginObject().Key("name").Text("thread_name").Key("ph").Text("M");
    AddTrack(threadId);
    json.Key("args").BeginObject();
    json.Key("name").Text(name.empty() ? "thread " + std::to_string(threadId) : name);
    json.EndObject().EndObject();
}

void TraceEvents::AddScope(const TimelineEntry& scope)
{
    const DumpRecord& record = *scope.record;
    json.Key("name")
        .Text(Description::Place(record, dump.names))
        .Key("ph")
        .Text("X")
        .Key("cat")
        .Text("scope");
    json.Key("ts").Number(scope.begin - origin).Key("dur").Number(scope.end - scope.begin);
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
    json.Key("name")
        .Text(Description::Event(record, dump.names))
        .Key("ph")
        .Text("i")
        .Key("s")
        .Text("t");
    json.Key("cat").Text(EventKind::Category(record.kind));
    json.Key("ts").Number(event.begin - origin);
    AddTrack(record.threadId);

    json.Key("args").BeginObject();
    if (EventKind::HasPlace(record.kind))
        json.Key("place").Text(Description::Place(record, dump.names));
    if (EventKind::IsError(record.kind) && record.param1 != 0)
        json.Key("code").Text(dump.names.Parameter(record));
    if (record.kind == EventKind::StateChange)
        json.Key("state").Text(dump.names.Parameter(record));
    if (EventKind::HasLine(record.kind))
        json.Key("line").Number(record.param2);
    AddArguments(event);
    json.EndObject();
}

void TraceEvents::AddTrack(std::int32_t threadId)
{
    json.Key("pid").Number(1).Key("tid").Number(static_cast<std::uint32_t>(threadId));
}

void TraceEvents::AddArguments(const TimelineEntry& entry)
{
    const DumpRecord& record = *entry.record;
    json.Key("depth").Number(static_cast<std::int64_t>(entry.depth));
    const std::string& name = dump.names.Object(record);
    if (record.object != 0)
        json.Key("object").Text("0x" + TextForms::Address(record.object));
    if (!name.empty())
        json.Key("objectName").Text(name);
    if (!EventKind::HasLine(record.kind) && (record.param1 != 0 || record.param2 != 0))
        json.Key("param1").Number(record.param1).Key("param2").Number(record.param2);
}
