#pragma once

#include "foundation/MString.h"

/// What `make` makes on the heap. Whatever it throws, and a null answer, count as exhausted memory
/// and raise an `MException` with an `MErrorOutOfMemory`:
///
///     T** const slots = MakeOrRaise([=] { return new T*[count]; });
template <class Make>
auto MakeOrRaise(Make make) -> decltype(make())
{
    decltype(make()) made = nullptr;
    try {
        made = make();
    } catch (...) {
        made = nullptr;
    }
    if (!made)
        RaiseOutOfMemory();
    return made;
}
