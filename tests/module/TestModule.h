#pragma once

#include "module/Runtime.h"
#include "tests/support/EngineWork.h"

enum class Place { Processor, Scheduler, OwnThread };

/// What the test module offers: the functions that every module has, and two of its own.
struct TestModule {
    decltype(&Varek::Runtime::AttachMFlowLogger) AttachMFlowLogger;
    decltype(&Varek::Runtime::RegisterFatalErrorHandlers) RegisterFatalErrorHandlers;
    decltype(&Varek::Runtime::Shutdown) Shutdown;

    /// Has `action` done on one of the module's threads, the third being an engine thread of its
    /// own, and returns when it is done or has failed. Raises what a command raised.
    void (*Do)(Place place, const Action& action);

    /// Raises an error of the module.
    void (*Raise)();
};

extern "C" __declspec(dllexport) const TestModule* GetTestModule();
