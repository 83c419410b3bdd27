#include "module/ModuleReference.h"

#include <windows.h>

namespace
{

const char anchor = 0; // any address inside this module

} // namespace

void ModuleReference::Hold()
{
    HMODULE held = nullptr;
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                           reinterpret_cast<const wchar_t*>(&anchor), &held))
        module = held;
}

void ModuleReference::Drop()
{
    if (module)
        FreeLibrary(static_cast<HMODULE>(module));
    module = nullptr;
}
