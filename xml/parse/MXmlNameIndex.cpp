#include "xml/parse/MXmlNameIndex.h"

void MXmlNameIndex::Reserve(std::size_t keyCount)
{
    keys.reserve(keyCount);
    MakeTable(keyCount);
}

void MXmlNameIndex::Add(std::uint64_t hash, std::int32_t depth)
{
    // A table that is full of keys that are gone is made anew as well, perhaps no larger.
    if ((takenSlots + 1) * 2 > slots.size())
        MakeTable(keys.size() * 2 + 1);
    keys.push_back({hash, depth, 0});
    AddToSlot(keys.back(), static_cast<std::int32_t>(keys.size()));
}

void MXmlNameIndex::DropAbove(std::int32_t depth)
{
    for (; !keys.empty() && keys.back().depth > depth; keys.pop_back()) {
        const Key& key = keys.back();
        slots[SlotOf(key.hash)].newest = key.older != 0 ? key.older : Gone;
    }
}

std::int32_t MXmlNameIndex::Newest(std::uint64_t hash) const
{
    const std::int32_t newest = slots[SlotOf(hash)].newest;
    return newest == Gone ? 0 : newest;
}

// The slot for that hash, or the free one where it would be.
std::size_t MXmlNameIndex::SlotOf(std::uint64_t hash) const
{
    const std::size_t mask = slots.size() - 1;
    const std::uint32_t upperHash = static_cast<std::uint32_t>(hash >> 32);
    std::size_t slot = static_cast<std::size_t>(hash) & mask;
    while (slots[slot].newest != 0 && slots[slot].upperHash != upperHash)
        slot = (slot + 1) & mask;
    return slot;
}

void MXmlNameIndex::AddToSlot(Key& key, std::int32_t place)
{
    Slot& slot = slots[SlotOf(key.hash)];
    if (slot.newest == 0)
        ++takenSlots;
    key.older = slot.newest > 0 ? slot.newest : 0;
    slot = {static_cast<std::uint32_t>(key.hash >> 32), place};
}

void MXmlNameIndex::MakeTable(std::size_t keyCount)
{
    std::size_t slotCount = 64;
    while (slotCount < keyCount * 2)
        slotCount *= 2;
    slots.assign(slotCount, {0, 0});
    takenSlots = 0;
    for (std::size_t i = 0; i < keys.size(); ++i)
        AddToSlot(keys[i], static_cast<std::int32_t>(i) + 1);
}
