#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

/// One table of names of the log core: text by a number. Names are added and never changed, moved
/// or removed, so that who looks one up needs no lock and waits for nobody, not even for a thread
/// that died while it added one.
///
/// It lies in memory as `RecorderDescription` tells, for those who read it out of a dump.
///
/// Threads: any number may look up and walk while one adds; two must not add at once.
class KLogNames
{
public:
    /// A name. Its text follows it in memory, with a zero behind.
    struct Name {
        /// As long as `length` says, and zero-terminated.
        const char* GetText() const { return reinterpret_cast<const char*>(this + 1); }

        const Name* older;              ///< the one added before, null for the first
        std::uint64_t key;              ///< what the name is for
        std::atomic<Name*> branches[4]; ///< the ways on to other names, by two bits of their hash
        std::uint64_t length;           ///< bytes of the text
    };

    /// The head of the memory that names are cut from.
    struct Block {
        const Block* older; ///< the one taken before, null for the first
        std::uint64_t size; ///< bytes, this head included
    };

    /// Bytes of a block, unless a single name needs more.
    static const std::size_t blockSize = 0x4000;

    KLogNames() = default;
    KLogNames(const KLogNames&) = delete;
    KLogNames& operator=(const KLogNames&) = delete;
    ~KLogNames();

    /// Adds a name unless the key has one. Raises std::bad_alloc, and is then as it was.
    void Insert(std::uint64_t key, const char* text, std::size_t length);

    /// The name of a key, null when it has none. Stays valid as long as the table.
    const Name* Find(std::uint64_t key) const
    {
        return PlaceOf(key).load(std::memory_order_acquire);
    }

    /// The name added last; the others follow as its `older`.
    const Name* GetNewest() const { return newest.load(std::memory_order_acquire); }

private:
    friend class KLogger; // describes the fields to those who read raw memory

    std::atomic<Name*>& PlaceOf(std::uint64_t key) const;
    void* Allocate(std::size_t size);
    void AddBlock(std::size_t size);

    std::atomic<const Name*> newest{nullptr};
    const Block* newestBlock = nullptr;
    mutable std::atomic<Name*> root{nullptr};
    char* free = nullptr; // what the newest block has left
    std::size_t left = 0;
};
