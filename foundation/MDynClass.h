#pragma once

#include "foundation/MString.h"

/// The record of a class with run-time identity, one static object a class. The record is the
/// identity: two objects are of one class when `GetDynClass` gives the same address.
///
/// A record may be built before its base's, which it refers to by address only.
class MDynClass
{
public:
    /// `base` is kept by address, null for the root.
    MDynClass(const MString& name, const MDynClass* base);

    /// The class name, spelled as in the source.
    const MString& GetName() const { return name; }

    /// The record of the base class; null for the root.
    const MDynClass* GetBase() const { return base; }

private:
    MString name;
    const MDynClass* base;
};
