#pragma once

#include "foundation/MError.h"

/// Exhausted memory, as `RaiseOutOfMemory` raises it. It has no Code; its message is always
/// "Out of memory".
class MErrorOutOfMemory : public MError
{
public:
    /// The record of this class.
    static const MDynClass dynClass;

    const MDynClass* GetDynClass() const override;
    MDynObject* Clone() const override;
    MDynObject* CreateInstance() const override;
    MString GetMessageText() const override;
};
