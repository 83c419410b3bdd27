#pragma once

#include <cstdint>

class MDynClass;

/// The root of classes whose objects can name their class, copy themselves and make fresh objects
/// of their class without the caller's knowing which class it is.
///
/// A class that joins the tree brings a static `MDynClass` record and its own `GetDynClass`, and,
/// where it can be copied or made, its own `Clone` and `CreateInstance`. To get from the root to a
/// class, use `dynamic_cast`.
class MDynObject
{
public:
    /// The record of this class.
    static const MDynClass dynClass;

    MDynObject();

    /// @{
    /// For subclasses that can be copied.
    MDynObject(const MDynObject&) = default;
    MDynObject& operator=(const MDynObject&) = default;
    /// @}

    virtual ~MDynObject();

    /// The record of the object's class.
    virtual const MDynClass* GetDynClass() const = 0;

    /// Does nothing here, and nothing calls it.
    virtual void DynHook();

    /// A heap copy of the same class, owned by the caller. Null when the class cannot be copied,
    /// which is no error.
    virtual MDynObject* Clone() const;

    /// A fresh heap object of the same class, owned by the caller. Null when the class cannot be
    /// made this way.
    virtual MDynObject* CreateInstance() const;

private:
    std::uint32_t dynWord; // travels with copies; nothing reads it
};
