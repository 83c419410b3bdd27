#include "xml/MXmlNameIndex.h"

void MXmlNameIndex::Reserve(std::size_t keyCount)
{
    keys.reserve(keyCount);
    std::size_t slotCount = 64;
    while (slotCount < keyCount * 2)
        slotCount *= 2;
    if (slotCount > slots.size())
        MakeTable(slotCount);
}

void MXmlNameIndex::Add(std::uint64_t hash, std::int32_t depth)
{
    if ((takenSlots + 1) * 2 > slots.size())
        Reserve(keys.size() * 2 + 1);
    Slot& slot = TakeSlot(hash);
    keys.push_back({hash, depth, slot.newest});
    slot.newest = static_cast<std::int32_t>(keys.size());
}

void MXmlNameIndex::DropAbove(std::int32_t depth)
{
    for (; !keys.empty() && keys.back().depth > depth; keys.pop_back())
        slots[SlotOf(keys.back().hash)].newest = keys.back().older;
}

std::int32_t MXmlNameIndex::Newest(std::uint64_t hash) const
{
    return slots.empty() ? 0 : slots[SlotOf(hash)].newest;
}

// The slot with that hash, or the free one where it would go.
std::size_t MXmlNameIndex::SlotOf(std::uint64_t hash) const
{
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = static_cast<std::size_t>(hash >> 32 ^ hash) & mask;
    while (slots[slot].taken && slots[slot].hash != hash)
        slot = (slot + 1) & mask;
    return slot;
}

MXmlNameIndex::Slot& MXmlNameIndex::TakeSlot(std::uint64_t hash)
{
    Slot& slot = slots[SlotOf(hash)];
    if (!slot.taken) {
        slot = {hash, 0, true};
        ++takenSlots;
    }
    return slot;
}

void MXmlNameIndex::MakeTable(std::size_t slotCount)
{
    slots.assign(slotCount, {0, 0, false});
    takenSlots = 0;
    for (std::size_t i = 0; i < keys.size(); ++i)
        TakeSlot(keys[i].hash).newest = static_cast<std::int32_t>(i) + 1;
}
