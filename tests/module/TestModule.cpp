#include "tests/module/TestModule.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "module/ModuleCommandProcessor.h"

#include <windows.h>

namespace
{

const wchar_t className[] = L"TestModule";
const ClassName testModuleName(className);

void DoOnProcessor(ModuleCommandProcessor& module, const Action& action)
{
    const MExceptionSlot slot = NewSlot();
    module.GetCommandProcessor()->ExecuteSynchronously(NewCommand(action, slot));
    if (slot->GetErrorCount() != 0)
        ThrowException(*slot.Get());
}

void DoOnScheduler(ModuleCommandProcessor& module, const Action& action)
{
    const PlatformEvent done(EventReset::Automatic);
    MDesyncEventScheduler& scheduler = *module.GetDesyncScheduler();
    scheduler.ScheduleDesyncEvent(NewEvent([&] { action(); }));
    scheduler.ScheduleDesyncEvent(NewEvent([&] { SetEvent(done); }));
    WaitForSingleObject(done, INFINITE);
}

void DoOnOwnThread(ModuleCommandProcessor& module, const Action& action)
{
    MCommandProcessor thread(&module, nullptr, FunctorFor([&] { action(); }).release(), nullptr, 0);
    thread.Start();
    thread.Stop();
}

void Do(Place place, const Action& action)
{
    const auto doThere = place == Place::Processor   ? DoOnProcessor
                         : place == Place::Scheduler ? DoOnScheduler
                                                     : DoOnOwnThread;
    doThere(ModuleCommandProcessor::GetInstance(), action);
}

void Raise()
{
    static MFlowLocation location(className, L"Raise");
    MError error;
    location.SetLine(__LINE__).RaiseRootError(error, L"AsTold");
    error.AddParameter(L"answer", 42);
    location.Throw(error);
}

} // namespace

const TestModule* GetTestModule()
{
    static const TestModule functions = {Varek::Runtime::AttachMFlowLogger,
                                         Varek::Runtime::RegisterFatalErrorHandlers,
                                         Varek::Runtime::Shutdown, Do, Raise};
    return &functions;
}
