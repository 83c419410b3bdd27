#pragma once

#include "engine/MMutexLock.h"
#include "engine/PlatformEvent.h"

#include <cstdint>

/// What a consumer sees of an `MThreadSafeFifo`.
template <class T, class A>
class MThreadSafeFifoInput
{
public:
    /// Copies the oldest element without removing it. False, with `element` untouched, when there
    /// is none.
    virtual bool Peek(T& element) = 0;

    /// Removes the oldest element. False, with `element` untouched, when there is none, which
    /// happens also after a successful wait if another consumer was quicker.
    virtual bool Get(T& element) = 0;

    /// Whether there is no element at this moment; other threads may change that at once.
    virtual bool IsEmpty() = 0;

    /// Number of elements at this moment.
    virtual std::int32_t GetCount() = 0;

    /// Waits up to `timeoutMs` for an element; false when none came.
    virtual bool Wait(std::uint32_t timeoutMs) = 0;

    /// Set while the queue holds anything; for wait tables. It stays the queue's.
    virtual HANDLE GetEvent() = 0;

protected:
    ~MThreadSafeFifoInput() = default;
};

/// What a producer sees of an `MThreadSafeFifo`.
template <class T, class A>
class MThreadSafeFifoOutput
{
public:
    /// Appends. Raises an `MException` with an `MErrorOutOfMemory` when the queue cannot grow; the
    /// queue is then as it was.
    virtual void Put(A element) = 0;

    /// Forgets all elements and gives the buffer back.
    virtual void Clear() = 0;

protected:
    ~MThreadSafeFifoOutput() = default;
};

/// A queue whose emptiness can be waited on: its event is set exactly while it holds an element.
///
/// `T` is a pointer type, `A` the type by which an element comes in. The queue does not own what
/// its elements point to: neither `Clear` nor the destructor deletes anything. Any number of
/// threads may produce and consume. The buffer grows by one slot at a time, as the queue is meant
/// to stay short, and is kept, so a steady state allocates nothing. It is instantiated for the two
/// element types of the engine.
template <class T, class A>
class MThreadSafeFifo final : public MThreadSafeFifoInput<T, A>, public MThreadSafeFifoOutput<T, A>
{
public:
    MThreadSafeFifo();
    MThreadSafeFifo(const MThreadSafeFifo&) = delete;
    MThreadSafeFifo& operator=(const MThreadSafeFifo&) = delete;
    ~MThreadSafeFifo();

    bool Peek(T& element) override;
    bool Get(T& element) override;
    bool IsEmpty() override;
    std::int32_t GetCount() override;
    bool Wait(std::uint32_t timeoutMs) override;
    HANDLE GetEvent() override;

    void Put(A element) override;
    void Clear() override;

    /// Removes the oldest element that is `wanted`, which is asked under the lock; the others keep
    /// their order. False, with `element` untouched, when there is none.
    bool GetFirst(bool (*wanted)(T element), T& element);

private:
    T& At(std::int32_t place) VAREK_LOCK_RULE(requires_capability(lock));
    void RemoveOldest() VAREK_LOCK_RULE(requires_capability(lock));
    void GrowTo(std::int32_t newCapacity) VAREK_LOCK_RULE(requires_capability(lock));
    bool IsSound() const VAREK_LOCK_RULE(requires_capability(lock));

    T* buffer VAREK_LOCK_RULE(guarded_by(lock));
    std::int32_t count VAREK_LOCK_RULE(guarded_by(lock));
    std::int32_t capacity VAREK_LOCK_RULE(guarded_by(lock));
    std::int32_t growBy VAREK_LOCK_RULE(guarded_by(lock));
    std::int32_t head VAREK_LOCK_RULE(guarded_by(lock)); // index of the oldest element
    MMutex lock;
    PlatformEvent notEmptyEvent;
};

class MCommand;
class MDesyncEvent;

extern template class MThreadSafeFifo<MCommand*, MCommand*>;
extern template class MThreadSafeFifo<MDesyncEvent*, MDesyncEvent*>;
