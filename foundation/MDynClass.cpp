#include "foundation/MDynClass.h"

MDynClass::MDynClass(const MString& name, const MDynClass* base) : name(name), base(base) {}
