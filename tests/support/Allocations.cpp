#include "tests/support/Allocations.h"

#include "diagnostics/KLogNames.h"

#include <atomic>
#include <cstdlib>

#include <malloc.h>
#include <windows.h>

namespace
{

const std::size_t ringBytes = 0x20000 * 40;

std::atomic<std::int64_t> blocksOut;

// What is to fail; written and read by the armed thread, which is none when its id is 0.
std::atomic<DWORD> armedThread;
AllocationFailure failure;
bool failsElsewhere;
int allocationsLeft;

bool IsToFail()
{
    if (armedThread == 0 || (armedThread == GetCurrentThreadId()) == failsElsewhere)
        return false;
    --allocationsLeft;
    return allocationsLeft == 0 ||
           (allocationsLeft < 0 && failure == AllocationFailure::ThrowsForGood);
}

bool IsCounted(void* block)
{
    return _msize(block) != ringBytes && _msize(block) != KLogNames::blockSize;
}

// Blocks come from the C run time, like those of a module that these tests load, since either side
// may free what the other has made. The calls stand apart so that the compiler does not take them
// for a mix of two ways to allocate.
__attribute__((noinline)) void* Allocate(std::size_t size)
{
    void* const block = std::malloc(size);
    if (block)
        blocksOut += IsCounted(block);
    return block;
}

__attribute__((noinline)) void Free(void* block)
{
    blocksOut -= IsCounted(block);
    std::free(block);
}

} // namespace

// Those for arrays go through these by default.

void* operator new(std::size_t size)
{
    void* const block = IsToFail() ? nullptr : Allocate(size);
    if (!block && failure != AllocationFailure::AnswersNull)
        throw std::bad_alloc();
    return block;
}

void operator delete(void* block) noexcept
{
    if (block)
        Free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

std::int64_t CountBlocks()
{
    return blocksOut;
}

void ArmAllocationFailure(AllocationFailure how, int nth)
{
    failure = how;
    allocationsLeft = nth;
    armedThread = GetCurrentThreadId();
}

void ArmAllocationFailureElsewhere(AllocationFailure how, int nth)
{
    failsElsewhere = true;
    ArmAllocationFailure(how, nth);
}

bool DisarmAllocationFailure()
{
    armedThread = 0;
    failsElsewhere = false;
    return allocationsLeft <= 0;
}
