#include "viewer/reading/minidump/RecorderNames.h"

#include "viewer/model/records/EventKind.h"

namespace
{

std::uint64_t Key(std::int32_t id)
{
    return static_cast<std::uint32_t>(id);
}

/// A wide text up to its zero as the recorder narrows it, empty if it is no name.
std::string NameAt(const Bytes& text)
{
    std::string name;
    for (std::uint64_t at = 0; at + 1 < text.Size(); at += 2) {
        const auto unit = text.At<std::uint16_t>(at);
        if (unit == 0)
            return name;
        if (unit < 0x20 || unit > 0xFF || (unit >= 0x7F && unit < 0xA0))
            return "";
        name += static_cast<char>(unit);
    }
    return "";
}

} // namespace

RecorderNames::RecorderNames(const RecorderLayout& layout, const Bytes& core,
                             const AddressSpace& memory,
                             const std::vector<MinidumpFile::Module>& modules)
    : memory(memory), modules(modules), threads(ReadTable(layout, core, layout.threadNames)),
      ids(ReadTable(layout, core, layout.idNames)),
      states(ReadTable(layout, core, layout.stateNames)),
      objects(ReadTable(layout, core, layout.objectNames))
{
}

// A list that goes round ends where it comes to a name that it has had.
RecorderNames::Table RecorderNames::ReadTable(const RecorderLayout& layout, const Bytes& core,
                                              std::uint32_t offset)
{
    constexpr std::uint64_t longest = 1 << 16;
    Table table;
    std::unordered_map<std::uint64_t, bool> seen;
    auto name = core.At<std::uint64_t>(std::uint64_t(offset) + layout.newestName);
    while (name != 0 && seen.try_emplace(name).second) {
        const std::optional<Bytes> head = memory.Read(name, layout.nameText);
        if (!head)
            break;
        const auto length = head->At<std::uint64_t>(layout.nameLength);
        const std::optional<Bytes> text = memory.Read(name + layout.nameText, length);
        if (!text || length > longest)
            break;
        table.try_emplace(head->At<std::uint64_t>(layout.nameKey),
                          std::string_view(text->Data(), text->Size()));
        name = head->At<std::uint64_t>(layout.olderName);
    }
    areMissing |= name != 0;
    return table;
}

std::string_view RecorderNames::Find(const Table& table, std::uint64_t key)
{
    const auto name = table.find(key);
    return name == table.end() ? std::string_view() : name->second;
}

std::string_view RecorderNames::IdName(std::int32_t id)
{
    const auto name = ids.find(Key(id));
    if (name != ids.end())
        return name->second;
    return id == 0 || !areMissing ? std::string_view() : Literal(id);
}

std::string_view RecorderNames::Literal(std::int32_t id)
{
    constexpr std::uint64_t longest = 400; // bytes
    const auto [literal, isNew] = literals.try_emplace(id);
    for (const MinidumpFile::Module& module : modules) {
        const std::uint64_t offset =
            static_cast<std::uint32_t>(Key(id) - module.begin); // of the lower 32 bits
        if (isNew && literal->second.empty() && offset < module.size)
            literal->second = NameAt(memory.ReadUpTo(module.begin + offset, longest));
    }
    return literal->second;
}

RecordNames RecorderNames::Of(const DumpRecord& record)
{
    RecordNames names;
    if (EventKind::IsError(record.kind))
        names.parameter = IdName(record.param1);
    else if (record.kind == EventKind::StateChange)
        names.parameter = Find(states, static_cast<std::uint32_t>(record.classId) * 100u +
                                           static_cast<std::uint32_t>(record.param1));
    else if (record.kind == EventKind::MessageSend)
        names.parameter = Find(states, Key(record.param1));
    names.className = IdName(record.classId);
    names.function = IdName(record.pointId);
    names.object = Find(objects, record.object);
    names.thread = Find(threads, Key(record.threadId));
    return names;
}
