#pragma once

#include "filers/MFilerTaggedPair.h"

/// Runs `body`, which answers whether it worked, inside a group under the tag. The group is closed
/// in either case; where it could not be opened, nothing else is done.
template <class Body>
bool InFiledGroup(MFilerTaggedPair& filer, const MString& tag, Body body)
{
    if (!filer.BeginGroup(tag))
        return false;
    const bool worked = body();
    return filer.EndGroup() && worked;
}
