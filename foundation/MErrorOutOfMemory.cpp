#include "foundation/MErrorOutOfMemory.h"

#include "foundation/MException.h"

const MDynClass* MErrorOutOfMemory::GetDynClass() const
{
    return &dynClass;
}

MDynObject* MErrorOutOfMemory::Clone() const
{
    return new MErrorOutOfMemory(*this);
}

MDynObject* MErrorOutOfMemory::CreateInstance() const
{
    return new MErrorOutOfMemory;
}

MString MErrorOutOfMemory::GetMessageText() const
{
    return L"Out of memory";
}

void RaiseOutOfMemory()
{
    ThrowException(MException(MErrorOutOfMemory()));
}
