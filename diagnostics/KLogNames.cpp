#include "diagnostics/KLogNames.h"

#include <algorithm>
#include <cassert>
#include <new>

const std::size_t KLogNames::blockSize;

KLogNames::~KLogNames()
{
    while (newestBlock) {
        const Block* const block = newestBlock;
        newestBlock = block->older;
        ::operator delete(const_cast<Block*>(block));
    }
}

void KLogNames::Insert(std::uint64_t key, const char* text, std::size_t length)
{
    std::atomic<Name*>& place = PlaceOf(key);
    if (place.load(std::memory_order_relaxed))
        return;
    Name* const name = new (Allocate(sizeof(Name) + length + 1)) Name();
    name->older = newest.load(std::memory_order_relaxed);
    name->key = key;
    name->length = length;
    char* const end = std::copy_n(text, length, reinterpret_cast<char*>(name + 1));
    *end = '\0';
    newest.store(name, std::memory_order_release);
    place.store(name, std::memory_order_release);
    assert(Find(key) == name);
}

/// Where the name of a key stands or would stand. Different keys have different hashes, whose bits
/// lead them apart in 32 steps at most.
std::atomic<KLogNames::Name*>& KLogNames::PlaceOf(std::uint64_t key) const
{
    std::atomic<Name*>* place = &root;
    std::uint64_t hash = key * 0x9E3779B97F4A7C15;
    for (Name* name; (name = place->load(std::memory_order_acquire)) && name->key != key;) {
        place = &name->branches[hash >> 62];
        hash <<= 2;
    }
    return *place;
}

void* KLogNames::Allocate(std::size_t size)
{
    const std::size_t aligned = (size + alignof(Name) - 1) / alignof(Name) * alignof(Name);
    if (aligned > left)
        AddBlock(std::max(blockSize, sizeof(Block) + aligned));
    assert(aligned <= left);
    void* const allocated = free;
    free += aligned;
    left -= aligned;
    return allocated;
}

void KLogNames::AddBlock(std::size_t size)
{
    void* const memory = ::operator new(size);
    if (!memory)
        throw std::bad_alloc();
    newestBlock = new (memory) Block{newestBlock, size};
    free = static_cast<char*>(memory) + sizeof(Block);
    left = size - sizeof(Block);
}
