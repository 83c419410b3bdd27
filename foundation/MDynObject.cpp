#include "foundation/MDynObject.h"

MDynObject::MDynObject() : dynWord(1) {}

MDynObject::~MDynObject() = default;

void MDynObject::DynHook() {}

MDynObject* MDynObject::Clone() const
{
    return nullptr;
}

MDynObject* MDynObject::CreateInstance() const
{
    return nullptr;
}
