#pragma once

#include "module/Runtime.h"
#include "tests/support/EngineWork.h"

/// What the test module offers: the functions that every module has, and what has an `action` done
/// on one of its threads, the last being an engine thread of its own. These return when it is done
/// or has failed, and the first raises what it raised.
struct TestModule {
    decltype(&Varek::Runtime::AttachMFlowLogger) AttachMFlowLogger;
    decltype(&Varek::Runtime::RegisterFatalErrorHandlers) RegisterFatalErrorHandlers;
    decltype(&Varek::Runtime::Shutdown) Shutdown;

    typedef void (*DoOnThread)(const Action& action);
    DoOnThread DoOnProcessor, DoOnScheduler, DoOnOwnThread;
    DoOnThread OnShutdown; ///< registers `action`, which must stay
};

extern "C" __declspec(dllexport) TestModule GetTestModule();
