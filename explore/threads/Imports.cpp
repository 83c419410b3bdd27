// The import slots of the engine's tests, as they are on Windows: the linker leads calls of the
// kernel to the wrappers, and what a slot takes for the system's own function is the kernel's.

#include "tests/support/SystemFunction.h"

#include <cstring>

#include <process.h>
#include <windows.h>

#define IMPORT(name)                                                                               \
    extern "C" decltype(name) __real_##name;                                                       \
    extern "C" decltype(&name) __imp_##name;

IMPORT(WaitForMultipleObjects)
IMPORT(WaitForSingleObject)
IMPORT(_beginthreadex)
IMPORT(CreateEventW)
IMPORT(SetEvent)
IMPORT(ResetEvent)
IMPORT(CloseHandle)

extern "C" {

DWORD __wrap_WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL all, DWORD timeoutMs)
{
    return __imp_WaitForMultipleObjects(count, handles, all, timeoutMs);
}

DWORD __wrap_WaitForSingleObject(HANDLE handle, DWORD timeoutMs)
{
    return __imp_WaitForSingleObject(handle, timeoutMs);
}

std::uintptr_t __wrap__beginthreadex(void* security, unsigned stackSize, unsigned (*routine)(void*),
                                     void* argument, unsigned flags, unsigned* threadId)
{
    return __imp__beginthreadex(security, stackSize, routine, argument, flags, threadId);
}

HANDLE __wrap_CreateEventW(void* security, BOOL manualReset, BOOL initialState, const wchar_t* name)
{
    return __imp_CreateEventW(security, manualReset, initialState, name);
}

BOOL __wrap_SetEvent(HANDLE event)
{
    return __imp_SetEvent(event);
}

BOOL __wrap_ResetEvent(HANDLE event)
{
    return __imp_ResetEvent(event);
}

BOOL __wrap_CloseHandle(HANDLE handle)
{
    return __imp_CloseHandle(handle);
}
}

void* FindSystemFunction(const char* name)
{
    const struct {
        const char* name;
        void* function;
    } functions[] = {
        {"WaitForMultipleObjects", reinterpret_cast<void*>(__real_WaitForMultipleObjects)},
        {"WaitForSingleObject", reinterpret_cast<void*>(__real_WaitForSingleObject)},
        {"_beginthreadex", reinterpret_cast<void*>(__real__beginthreadex)},
        {"CreateEventW", reinterpret_cast<void*>(__real_CreateEventW)},
        {"SetEvent", reinterpret_cast<void*>(__real_SetEvent)},
        {"ResetEvent", reinterpret_cast<void*>(__real_ResetEvent)},
        {"CloseHandle", reinterpret_cast<void*>(__real_CloseHandle)},
    };
    for (const auto& function : functions)
        if (std::strcmp(function.name, name) == 0)
            return function.function;
    return nullptr;
}
