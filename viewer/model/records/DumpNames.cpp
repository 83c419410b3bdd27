#include "viewer/model/records/DumpNames.h"

#include "viewer/forms/Utf8.h"
#include "viewer/model/records/EventKind.h"

namespace
{

const std::string none;
const std::string unknown = "(unknown)";

std::uint64_t StateKey(const DumpRecord& record)
{
    return KeyOf(record.classId, record.param1);
}

template <class Map>
void Insert(Map& names, typename Map::key_type key, std::string_view name)
{
    if (name.empty())
        return;
    const auto inserted = names.try_emplace(key);
    if (inserted.second)
        inserted.first->second = Utf8::FromName(name);
}

template <class Map>
const std::string& NameOr(const std::string& absent, const Map& names, typename Map::key_type key)
{
    const auto entry = names.find(key);
    return entry == names.end() ? absent : entry->second;
}

} // namespace

void DumpNames::Learn(const DumpRecord& record, const RecordNames& text)
{
    Insert(ids, record.classId, text.className);
    Insert(ids, record.pointId, text.function);
    Insert(objects, record.object, text.object);
    Insert(threads, record.threadId, text.thread);
    if (EventKind::IsError(record.kind))
        Insert(ids, record.param1, text.parameter);
    else if (record.kind == EventKind::StateChange)
        Insert(states, StateKey(record), text.parameter);
    else
        Insert(messages, record.param1, text.parameter);
}

const std::string& DumpNames::Object(const DumpRecord& record) const
{
    return NameOr(none, objects, record.object);
}

const std::string& DumpNames::Thread(std::int32_t threadId) const
{
    return NameOr(none, threads, threadId);
}

const std::string& DumpNames::Class(const DumpRecord& record) const
{
    return NameOr(unknown, ids, record.classId);
}

const std::string& DumpNames::Function(const DumpRecord& record) const
{
    return NameOr(unknown, ids, record.pointId);
}

std::string DumpNames::Parameter(const DumpRecord& record) const
{
    const std::string number = std::to_string(record.param1);
    if (EventKind::IsError(record.kind))
        return record.param1 == 0 ? none : NameOr(unknown, ids, record.param1);
    if (record.kind == EventKind::StateChange)
        return NameOr("state_" + number, states, StateKey(record));
    if (record.kind == EventKind::MessageSend)
        return NameOr(number, messages, record.param1);
    return none;
}

std::string DumpNames::Error(const DumpRecord& record) const
{
    const std::string code = Parameter(record);
    return (code.empty() ? "no code" : code) + " at " + Class(record) + "." + Function(record);
}
