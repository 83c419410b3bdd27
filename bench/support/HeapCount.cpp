#include "bench/support/HeapCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include <malloc.h>

namespace
{

std::atomic<std::size_t> allocations;
std::atomic<std::size_t> liveBytes;
std::atomic<std::size_t> peakBytes;
std::size_t baseBytes;

void RaisePeak(std::size_t live)
{
    std::size_t peak = peakBytes.load();
    while (live > peak && !peakBytes.compare_exchange_weak(peak, live)) {
    }
}

} // namespace

std::size_t HeapCount::Allocations()
{
    return allocations;
}

void HeapCount::ResetPeak()
{
    baseBytes = liveBytes;
    peakBytes = baseBytes;
}

std::size_t HeapCount::LiveBytes()
{
    return liveBytes - baseBytes;
}

std::size_t HeapCount::PeakBytes()
{
    return peakBytes - baseBytes;
}

void* operator new(std::size_t size)
{
    void* const block = std::malloc(size ? size : 1);
    if (!block)
        throw std::bad_alloc();
    ++allocations;
    const std::size_t added = _msize(block);
    RaisePeak(liveBytes.fetch_add(added) + added);
    return block;
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void* block) noexcept
{
    if (!block)
        return;
    liveBytes -= _msize(block);
    std::free(block);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}
