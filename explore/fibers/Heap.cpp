#include "explore/fibers/Heap.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace
{

/// In front of every block.
struct alignas(16) Header {
    std::size_t size;
    Header* nextFreed;
    bool marked;
};

const int freed = 0xDD;

bool marking = false;
std::size_t marked = 0;
Header* firstFreed = nullptr;

} // namespace

void MarkBlocks(bool scenarios)
{
    marking = scenarios;
}

std::size_t MarkedBlocks()
{
    return marked;
}

void ForgetFreedBlocks()
{
    while (Header* const header = firstFreed) {
        firstFreed = header->nextFreed;
        std::free(header);
    }
}

void* operator new(std::size_t size)
{
    Header* const header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (!header)
        throw std::bad_alloc();
    *header = {size, nullptr, marking};
    marked += marking;
    return header + 1;
}

void operator delete(void* block) noexcept
{
    if (!block)
        return;
    Header* const header = static_cast<Header*>(block) - 1;
    if (!header->marked)
        return std::free(header);
    if (header->nextFreed || header == firstFreed)
        std::abort(); // freed twice
    --marked;
    std::memset(block, freed, header->size);
    header->nextFreed = firstFreed;
    firstFreed = header;
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}
