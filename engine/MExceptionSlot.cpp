#include "engine/MExceptionSlot.h"

#include "foundation/MException.h"

#include <utility>

MExceptionSlot::MExceptionSlot(std::auto_ptr<MException> exception)
    : block(new Block{exception.get(), {1}})
{
    if (block)
        exception.release();
}

MExceptionSlot::MExceptionSlot(const MExceptionSlot& other) : block(other.block)
{
    if (block)
        ++block->refCount;
}

MExceptionSlot& MExceptionSlot::operator=(MExceptionSlot other)
{
    std::swap(block, other.block);
    return *this;
}

MExceptionSlot::~MExceptionSlot()
{
    if (block && --block->refCount == 0) {
        delete block->exception;
        delete block;
    }
}
