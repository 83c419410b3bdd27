#include "engine/MThreadSafeFifo.h"

#include "foundation/MakeOrRaise.h"

#include <cassert>
#include <cstddef>

#include <windows.h>

template <class T, class A>
MThreadSafeFifo<T, A>::MThreadSafeFifo()
    : buffer(nullptr), count(0), capacity(0), growBy(1), head(0), notEmptyEvent(EventReset::Manual)
{
}

template <class T, class A>
MThreadSafeFifo<T, A>::~MThreadSafeFifo()
{
    delete[] buffer;
}

template <class T, class A>
bool MThreadSafeFifo<T, A>::Peek(T& element)
{
    MMutexLock guard(lock);
    if (count == 0)
        return false;
    element = At(0);
    return true;
}

template <class T, class A>
bool MThreadSafeFifo<T, A>::Get(T& element)
{
    MMutexLock guard(lock);
    assert(IsSound());
    assert(Wait(0) == (count != 0));
    if (count == 0)
        return false;
    element = buffer[head];
    RemoveOldest();
    return true;
}

template <class T, class A>
bool MThreadSafeFifo<T, A>::IsEmpty()
{
    return !Wait(0);
}

template <class T, class A>
std::int32_t MThreadSafeFifo<T, A>::GetCount()
{
    MMutexLock guard(lock);
    return count;
}

template <class T, class A>
bool MThreadSafeFifo<T, A>::Wait(std::uint32_t timeoutMs)
{
    return WaitForSingleObject(notEmptyEvent, timeoutMs) == WAIT_OBJECT_0;
}

template <class T, class A>
HANDLE MThreadSafeFifo<T, A>::GetEvent()
{
    return notEmptyEvent;
}

template <class T, class A>
void MThreadSafeFifo<T, A>::Put(A element)
{
    MMutexLock guard(lock);
    if (count == capacity)
        GrowTo(capacity + growBy);
    std::int32_t index = head + count;
    if (index >= capacity)
        index -= capacity;
    assert(index < capacity);
    buffer[index] = element;
    ++count;
    assert(IsSound());
    SetEvent(notEmptyEvent);
}

template <class T, class A>
void MThreadSafeFifo<T, A>::Clear()
{
    MMutexLock guard(lock);
    delete[] buffer;
    buffer = nullptr;
    count = capacity = head = 0;
    ResetEvent(notEmptyEvent);
}

// Those ahead of it move up.
template <class T, class A>
bool MThreadSafeFifo<T, A>::GetFirst(bool (*wanted)(T element), T& element)
{
    MMutexLock guard(lock);
    std::int32_t place = 0;
    while (place < count && !wanted(At(place)))
        ++place;
    if (place == count)
        return false;
    element = At(place);
    for (; place > 0; --place)
        At(place) = At(place - 1);
    RemoveOldest();
    return true;
}

template <class T, class A>
T& MThreadSafeFifo<T, A>::At(std::int32_t place)
{
    return buffer[(head + place) % capacity];
}

template <class T, class A>
void MThreadSafeFifo<T, A>::RemoveOldest()
{
    if (++head == capacity)
        head = 0;
    if (--count == 0)
        ResetEvent(notEmptyEvent);
}

template <class T, class A>
void MThreadSafeFifo<T, A>::GrowTo(std::int32_t newCapacity)
{
    T* const fresh = MakeOrRaise([=] { return new T[static_cast<std::size_t>(newCapacity)]; });
    for (std::int32_t i = 0; i < count; ++i)
        fresh[i] = At(i);
    delete[] buffer;
    buffer = fresh;
    capacity = newCapacity;
    head = 0;
}

#ifndef NDEBUG
template <class T, class A>
bool MThreadSafeFifo<T, A>::IsSound() const
{
    return count >= 0 && count <= capacity && head >= 0 && head <= capacity - (capacity != 0) &&
           (buffer != nullptr) == (capacity != 0);
}
#endif

template class MThreadSafeFifo<MCommand*, MCommand*>;
template class MThreadSafeFifo<MDesyncEvent*, MDesyncEvent*>;
