#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Finds out by the hash of a name which entries of a stack have it, the newest first. Keys come
/// and go in the order of the stack; an entry may have several.
class MXmlNameIndex
{
public:
    /// Makes room for so many keys at once. Comes before all else.
    void Reserve(std::size_t keyCount);

    /// Adds a key of the entry at `depth`, which must not be below that of any key there.
    void Add(std::uint64_t hash, std::int32_t depth);

    /// Drops the keys of the entries above `depth`.
    void DropAbove(std::int32_t depth);

    /// The place of the newest key that may have that hash, 0 if there is none.
    std::int32_t Newest(std::uint64_t hash) const;

    /// The place of the next older one, 0 if there is none.
    std::int32_t Older(std::int32_t place) const { return KeyAt(place).older; }

    /// Depth of the entry that the key at `place` belongs to.
    std::int32_t Depth(std::int32_t place) const { return KeyAt(place).depth; }

private:
    struct Key {
        std::uint64_t hash;
        std::int32_t depth;
        std::int32_t older;
    };

    // For the keys whose hashes have the same upper half and lead to this place. Small, because
    // what a search costs is to fetch one. `newest` is 0 in a free slot, and `Gone` where there are
    // no keys any more.
    struct Slot {
        std::uint32_t upperHash;
        std::int32_t newest;
    };

    static constexpr std::int32_t Gone = -1;

    const Key& KeyAt(std::int32_t place) const { return keys[static_cast<std::size_t>(place) - 1]; }
    std::size_t SlotOf(std::uint64_t hash) const;
    void AddToSlot(Key& key, std::int32_t place);
    void MakeTable(std::size_t keyCount);

    // Places are counted from 1.
    std::vector<Key> keys;
    // As many as a power of two, at most half of them taken.
    std::vector<Slot> slots;
    std::size_t takenSlots = 0;
};
