#include "engine/PlatformEvent.h"

#include <windows.h>

HANDLE CreatePlatformEvent(EventReset reset)
{
    return CreateEventW(nullptr, reset == EventReset::Manual, FALSE, nullptr);
}

PlatformEvent::~PlatformEvent()
{
    if (handle)
        CloseHandle(handle);
}
