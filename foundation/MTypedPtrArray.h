#pragma once

#include "foundation/MakeOrRaise.h"
#include "foundation/MString.h"

#include <algorithm>
#include <cstdint>

/// A growable array of owned heap objects of type `T`, passed in as `A`; the framework's array of
/// strings is `MTypedPtrArray<MString, const MString&>`.
///
/// Unless told otherwise it grows by one slot at a time. It belongs to one thread at a time.
/// Whatever goes wrong with memory raises an `MException` with an `MErrorOutOfMemory`, and the
/// elements are then as they were.
template <class T, class A>
class MTypedPtrArray
{
public:
    MTypedPtrArray() : elements(nullptr), count(0), allocated(0), growBy(1), growFactor(0) {}
    MTypedPtrArray(const MTypedPtrArray&) = delete;
    MTypedPtrArray& operator=(const MTypedPtrArray&) = delete;
    virtual ~MTypedPtrArray();

    /// Multiplicative step of `Grow`; has effect only above 1.
    virtual void SetGrowFactor(float factor) { growFactor = factor; }

    /// Makes room for more elements, for at least `minimum` in all.
    virtual void Grow(std::int32_t minimum);

    /// Makes the array exactly `newAllocated` slots long, not negative. Elements beyond them are
    /// destroyed.
    void Resize(std::int32_t newAllocated);

    /// Appends a copy of `value` and returns its index.
    std::int32_t Add(A value);

    /// The element, made on the spot where the slot is empty. `index` must lie within the slots.
    T& GetAt(std::int32_t index);

    /// Destroys an element and moves the later ones down. `index` must be below the count.
    void RemoveAt(std::int32_t index);

    /// Destroys all elements and keeps the slots.
    void RemoveAll();

    /// Number of elements that were added and not removed; what `GetAt` makes does not count.
    std::int32_t GetCount() const { return count; }

    /// Number of slots.
    std::int32_t GetAllocated() const { return allocated; }

private:
    static const std::int32_t maximum = 2147483647;

    void Destroy(std::int32_t from);

    T** elements;
    std::int32_t count;
    std::int32_t allocated;
    std::int32_t growBy;
    float growFactor;
};

template <class T, class A>
MTypedPtrArray<T, A>::~MTypedPtrArray()
{
    Destroy(0);
    delete[] elements;
}

template <class T, class A>
void MTypedPtrArray<T, A>::Grow(std::int32_t minimum)
{
    const std::int32_t stepped = static_cast<std::int32_t>(static_cast<std::uint32_t>(allocated) +
                                                           static_cast<std::uint32_t>(growBy));
    std::int32_t target = std::max(minimum, stepped);
    if (growFactor > 1.0f)
        target =
            std::max(target, static_cast<std::int32_t>(static_cast<float>(allocated) * growFactor));
    if (target <= allocated) {
        if (allocated == maximum)
            RaiseOutOfMemory();
        allocated = maximum;
    }
    Resize(target);
}

template <class T, class A>
void MTypedPtrArray<T, A>::Resize(std::int32_t newAllocated)
{
    if (newAllocated == allocated)
        return;
    T** const resized = MakeOrRaise([=] { return new T*[static_cast<std::size_t>(newAllocated)]; });
    const std::int32_t kept = std::min(allocated, newAllocated);
    Destroy(kept);
    std::copy(elements, elements + kept, resized);
    std::fill(resized + kept, resized + newAllocated, nullptr);
    delete[] elements;
    elements = resized;
    allocated = newAllocated;
    count = std::min(count, allocated);
}

template <class T, class A>
std::int32_t MTypedPtrArray<T, A>::Add(A value)
{
    if (count == allocated)
        Grow(0);
    T* const added = MakeOrRaise([&value] { return new T(value); });
    delete elements[count]; // what `GetAt` may have made there
    elements[count] = added;
    return count++;
}

template <class T, class A>
T& MTypedPtrArray<T, A>::GetAt(std::int32_t index)
{
    if (!elements[index])
        elements[index] = MakeOrRaise([] { return new T; });
    return *elements[index];
}

template <class T, class A>
void MTypedPtrArray<T, A>::RemoveAt(std::int32_t index)
{
    delete elements[index];
    std::copy(elements + index + 1, elements + count, elements + index);
    --count;
    elements[count] = nullptr;
}

template <class T, class A>
void MTypedPtrArray<T, A>::RemoveAll()
{
    if (count > 0)
        Destroy(0);
    count = 0;
}

template <class T, class A>
void MTypedPtrArray<T, A>::Destroy(std::int32_t from)
{
    for (std::int32_t i = from; i < allocated; ++i) {
        delete elements[i];
        elements[i] = nullptr;
    }
}
