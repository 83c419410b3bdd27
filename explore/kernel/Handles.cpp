#include "explore/kernel/Handles.h"

#include <cstdlib>

namespace
{

const std::uintptr_t capacity = 1 << 16;

Object* table[capacity];
std::uintptr_t last = 0;
std::size_t open = 0;

// Handles are multiples of four, from eight up.
HANDLE HandleOf(std::uintptr_t index)
{
    return reinterpret_cast<HANDLE>((index + 2) * 4);
}

/// The handle's place in the table; a place of nobody's if there can be no such handle.
Object*& Place(HANDLE handle)
{
    static Object* nowhere;
    nowhere = nullptr;
    const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(handle);
    const bool possible = number % 4 == 0 && number / 4 >= 2 && number / 4 - 2 < capacity;
    return possible ? table[number / 4 - 2] : nowhere;
}

template <class Matches>
Object* FindObject(Matches matches)
{
    for (Object* object : table)
        if (object && matches(*object))
            return object;
    return nullptr;
}

} // namespace

Object* MakeObject(bool signalled, bool stays)
{
    Object* const object = static_cast<Object*>(std::calloc(1, sizeof(Object)));
    object->signalled = signalled;
    object->stays = stays;
    object->references = 1;
    return object;
}

void Drop(Object* object)
{
    if (--object->references == 0)
        std::free(object);
}

HANDLE OpenHandle(Object* object)
{
    do
        last = (last + 1) % capacity;
    while (table[last]);
    table[last] = object;
    ++open;
    return HandleOf(last);
}

Object* Find(HANDLE handle)
{
    Object* const object = Place(handle);
    if (!object)
        CurrentThread().lastError = ERROR_INVALID_HANDLE;
    return object;
}

Object* FindThread(std::uint32_t id)
{
    return FindObject([=](Object& object) { return !object.isMutex && object.thread == id; });
}

void AbandonMutexes(std::uint32_t thread)
{
    const auto owned = [=](Object& object) { return object.isMutex && object.thread == thread; };
    while (Object* const mutex = FindObject(owned)) {
        mutex->thread = 0;
        mutex->signalled = mutex->abandoned = true;
    }
}

bool ForgetHandle(HANDLE handle)
{
    Object* const object = Find(handle);
    Place(handle) = nullptr;
    if (!object)
        return false;
    --open;
    Drop(object);
    return true;
}

std::size_t CountHandles()
{
    return open;
}
