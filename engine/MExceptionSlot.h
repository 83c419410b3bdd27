#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

class MException;

/// A counted pointer to a heap `MException`, shared by the caller of a command, who reads it, and
/// the command, which fills it. The last handle to go deletes the exception, on whichever thread.
///
/// An empty slot says that the command's failures are not wanted. Handles may be copied and dropped
/// on different threads; one handle belongs to one thread at a time, and the exception inside is
/// handed over by waiting for the command.
class MExceptionSlot
{
public:
    /// An empty slot.
    MExceptionSlot() : block(nullptr) {}

    /// Takes the exception over. std::bad_alloc when there is no memory for the count.
    explicit MExceptionSlot(std::auto_ptr<MException> exception);

    /// One more handle on the same exception.
    MExceptionSlot(const MExceptionSlot& other);

    /// Lets go of the exception held so far, and becomes one more handle on `other`'s.
    MExceptionSlot& operator=(MExceptionSlot other);
    ~MExceptionSlot();

    /// Whether there is no exception to fill.
    bool IsEmpty() const { return !Get(); }

    /// The exception, owned by the slot; null when the slot is empty.
    MException* Get() const { return block ? block->exception : nullptr; }

    /// The same exception. Not to be used on an empty slot.
    MException* operator->() const { return Get(); }

private:
    struct Block {
        MException* exception;
        std::atomic<std::uint32_t> refCount;
    };

    Block* block;
};
