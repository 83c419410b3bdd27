#pragma once

#include "tests/support/EngineWork.h"
#include "varek/Watchdog.h"

/// What the module of these tests does with the face, for its host.
struct FaceModule {
    void (*Call)(const Action& action);
    void (*Post)(const Action& action);
    void (*When)(HANDLE handle, const Action& action); ///< these are the one worker's
    void (*Every)(int milliseconds, const Action& action);
    void (*After)(int milliseconds, const Action& action);
    void (*StartWorker)();
    void (*StopWorker)();
    void (*Watch)(int milliseconds, const varek::Watchdog::Report& report); ///< 0: no more
};

extern "C" __declspec(dllexport) FaceModule GetFaceModule();
