#include "tests/module/TestModule.h"

#include "diagnostics/ClassName.h"
#include "module/ModuleCommandProcessor.h"
#include "tests/support/Raised.h"

#include <cwchar>

#include <windows.h>

#include <objbase.h>

namespace
{

void DoOnProcessor(const Action& action)
{
    const MExceptionSlot slot = NewSlot();
    ModuleCommandProcessor& module = ModuleCommandProcessor::GetInstance();
    module.GetCommandProcessor()->ExecuteSynchronously(NewCommand(action, slot));
    if (slot->GetErrorCount() != 0)
        ThrowException(*slot.Get());
}

void Schedule(const Action& action)
{
    MDesyncEvent* const event = NewEvent([&action] { action(); });
    ModuleCommandProcessor::GetInstance().GetDesyncScheduler()->ScheduleDesyncEvent(event);
}

void DoOnScheduler(const Action& action)
{
    const PlatformEvent done(EventReset::Automatic);
    const Action tell = [&] { SetEvent(done); };
    Schedule(action);
    Schedule(tell);
    WaitForSingleObject(done, INFINITE);
}

/// A thread whose flush is an action.
template <class Thread>
struct Dying : Thread {
    template <class... Arguments>
    explicit Dying(const Action& action, Arguments... arguments)
        : Thread(&ModuleCommandProcessor::GetInstance(), arguments...), action(action)
    {
    }
    void OnFlush() override { action(); }

    std::string Die()
    {
        this->Start();
        const std::string raised = Raised([this] { this->Flush(); });
        this->Stop();
        return raised;
    }
    const Action& action;
};

std::string DieOnProcessor(const Action& action, const Action& lastAct)
{
    MCallbackFunctor* const stop = FunctorFor([&] { lastAct(); }).release();
    return Dying<MCommandProcessor>(action, nullptr, stop, nullptr, 0).Die();
}

const Action* leaveCom;

std::string DieOnScheduler(const Action& action, const Action& lastAct)
{
    Dying<MSchedulerThread> thread(action);
    leaveCom = &lastAct;
    const std::string raised = thread.Die();
    leaveCom = nullptr;
    return raised;
}

void LeaveCom()
{
    typedef decltype(&CoUninitialize) Function;
    const auto address = GetProcAddress(GetModuleHandleW(L"ole32"), "CoUninitialize");
    reinterpret_cast<Function>(reinterpret_cast<void*>(address))();
    if (leaveCom)
        (*leaveCom)();
}

void OnShutdown(const Action& action)
{
    ModuleCommandProcessor::OnShutdown(action ? FunctorFor([&action] { action(); }) : nullptr);
}

const char getModule[] = "GetModuleHandleExW";
const char wait[] = "WaitForSingleObject";

wchar_t startUp[400];

void Tell(const wchar_t* constructed)
{
    if (std::wcslen(startUp) + std::wcslen(constructed) + 2 < sizeof startUp / sizeof *startUp)
        std::wcscat(std::wcscat(startUp, constructed), L" ");
}

// The first static of its own that the author of a module can have.
__attribute__((init_priority(102))) const ClassName ownName(L"TestModule");

} // namespace

// Where the linker leads what the static start-up calls.
#define TELLING(function, text, Result, parameters, ...)                                           \
    Result __real_##function parameters;                                                           \
    Result __wrap_##function parameters                                                            \
    {                                                                                              \
        Tell(text);                                                                                \
        return __real_##function(__VA_ARGS__);                                                     \
    }
extern "C" {
TELLING(_ZN26MKLoggerAdapterInitialiserC1Ev, L"adapter", void, (void* self), self)
TELLING(_ZN18KLoggerInitialiserC1Ev, L"core", void, (void* self), self)
TELLING(_ZN20MDiagnosticsRegistry17RegisterClassNameEjPKw, name, void,
        (void* self, std::uint32_t id, const wchar_t* name), self, id, name)
TELLING(_ZN7MLocale16GetClassicLocaleEv, L"classic", const void*, (), )
TELLING(_ZN7MStringC1EPKw, text, void, (void* self, const wchar_t* text), self, text)
}

// The import slots through which COM is left, and the system asked by who starts and stops.
extern "C" {
decltype(&CoUninitialize) __imp_CoUninitialize = LeaveCom;
decltype(&GetModuleHandleExW) __imp_GetModuleHandleExW = CallOrFail<getModule, FALSE>;
decltype(&WaitForSingleObject) __imp_WaitForSingleObject = CallOrFail<wait, WAIT_FAILED>;
}

TestModule GetTestModule()
{
    using namespace Varek::Runtime;
    return {AttachMFlowLogger,
            RegisterFatalErrorHandlers,
            Shutdown,
            ArmAllocationFailure,
            DisarmAllocationFailure,
            CountBlocks,
            ArmFailingCall,
            DisarmFailingCall,
            DoOnProcessor,
            DoOnScheduler,
            Schedule,
            OnShutdown,
            DieOnProcessor,
            DieOnScheduler,
            startUp};
}
