#pragma once

#include "engine/PlatformEvent.h"

#include <windows.h>

/// Holds threads up until it is opened.
struct Gate {
    void Open() { SetEvent(event); }
    void Pass() { WaitForSingleObject(event, INFINITE); }

    PlatformEvent event{EventReset::Manual};
};
