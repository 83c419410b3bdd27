#pragma once

#include "tests/support/EngineWork.h"
#include "varek/Host.h"
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
    void (*Watch)();                                                ///< for a moment
    void (*ExpectError)(const wchar_t* code, const Action& action); ///< that it is posted
};

extern "C" __declspec(dllexport) FaceModule GetFaceModule();

/// A host with these functions at hand.
struct LoadedFace : varek::Host, FaceModule {
    explicit LoadedFace(const varek::HostOptions& options = varek::HostOptions())
        : Host(L"face-module.dll", options), FaceModule(Find<FaceModule()>("GetFaceModule")())
    {
    }
};
