#include "viewer/showing/text/Description.h"

#include "viewer/forms/TextForms.h"
#include "viewer/model/records/EventKind.h"

std::string Description::Place(const DumpRecord& record, const DumpNames& names)
{
    return EventKind::HasPlace(record.kind) ? names.Class(record) + "." + names.Function(record)
                                            : "";
}

std::string Description::PlaceAndObject(const DumpRecord& record, const DumpNames& names)
{
    const std::string& name = names.Object(record);
    const std::string object = name.empty() ? TextForms::Address(record.object) : name;
    return Place(record, names) + (record.object == 0 ? "" : " (" + object + ")");
}

std::string Description::Event(const DumpRecord& record, const DumpNames& names)
{
    std::string text(EventKind::Name(record.kind));
    if (record.kind == EventKind::TimingPoint)
        return text + " (" + std::to_string(record.param1) + ", " + std::to_string(record.param2) +
               ")";
    if (record.kind == EventKind::StateChange)
        text += " to";
    const std::string parameter = names.Parameter(record);
    return parameter.empty() ? text : text + " " + parameter;
}

std::string Description::Whole(const DumpRecord& record, const DumpNames& names)
{
    const std::string line =
        EventKind::HasLine(record.kind) ? ", line " + std::to_string(record.param2) : "";
    const std::string lead = EventKind::HasPlace(record.kind) ? " at " : "";
    return Event(record, names) + lead + PlaceAndObject(record, names) + line;
}

std::string Description::Thread(std::int32_t threadId, const Recording& recording)
{
    const std::string& name = recording.dump.names.Thread(threadId);
    return recording.label + std::to_string(threadId) + (name.empty() ? "" : " " + name);
}
