#pragma once

/// A null object that the compiler takes for one that might be there.
template <class T>
T* NullObject()
{
    static T* volatile none = nullptr;
    return none;
}
