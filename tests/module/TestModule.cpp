#include "tests/module/TestModule.h"

#include "module/ModuleCommandProcessor.h"

#include <windows.h>

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

void DoOnScheduler(const Action& action)
{
    const PlatformEvent done(EventReset::Automatic);
    ModuleCommandProcessor& module = ModuleCommandProcessor::GetInstance();
    module.GetDesyncScheduler()->ScheduleDesyncEvent(NewEvent([&] { action(); }));
    module.GetDesyncScheduler()->ScheduleDesyncEvent(NewEvent([&] { SetEvent(done); }));
    WaitForSingleObject(done, INFINITE);
}

void DoOnOwnThread(const Action& action)
{
    MCommandProcessor thread(&ModuleCommandProcessor::GetInstance(), nullptr,
                             FunctorFor([&] { action(); }).release(), nullptr, 0);
    thread.Start();
    thread.Stop();
}

void OnShutdown(const Action& action)
{
    ModuleCommandProcessor::GetInstance().OnShutdown(FunctorFor([&action] { action(); }));
}

} // namespace

TestModule GetTestModule()
{
    using namespace Varek::Runtime;
    return {AttachMFlowLogger, RegisterFatalErrorHandlers,
            Shutdown,          DoOnProcessor,
            DoOnScheduler,     DoOnOwnThread,
            OnShutdown};
}
