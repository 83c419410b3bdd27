#pragma once

#include "module/Runtime.h"
#include "tests/support/Allocations.h"
#include "tests/support/EngineWork.h"
#include "tests/support/FailingCalls.h"

/// What the test module offers: the functions that every module has, its failing allocator and
/// failing calls, and what has an `action` done on one of its threads.
struct TestModule {
    decltype(&Varek::Runtime::AttachMFlowLogger) AttachMFlowLogger;
    decltype(&Varek::Runtime::RegisterFatalErrorHandlers) RegisterFatalErrorHandlers;
    decltype(&Varek::Runtime::Shutdown) Shutdown;

    decltype(&ArmAllocationFailure) ArmAllocationFailure;
    decltype(&DisarmAllocationFailure) DisarmAllocationFailure;
    decltype(&CountBlocks) CountBlocks;
    decltype(&ArmFailingCall) ArmFailingCall;
    decltype(&DisarmFailingCall) DisarmFailingCall;

    /// These return when it is done or has failed, and the first raises what it raised.
    typedef void (*DoOnThread)(const Action& action);
    DoOnThread DoOnProcessor, DoOnScheduler;

    DoOnThread Schedule;   ///< for the scheduler, without waiting; `action` must stay
    DoOnThread OnShutdown; ///< registers `action`, which must stay; an empty one as none

    /// Has `action` done on an engine thread of the module's own, which ends thereby, and `lastAct`
    /// as what the thread does last: by the stop functor, and by the leaving of COM. Answers what
    /// the one who waited for it was told.
    typedef std::string (*DieOnThread)(const Action& action, const Action& lastAct);
    DieOnThread DieOnProcessor, DieOnScheduler;

    const wchar_t* startUp; ///< what was constructed, in its order, as far as there was room for it
};

extern "C" __declspec(dllexport) TestModule GetTestModule();
