#include "tests/module/TestModule.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "engine/MDesyncEvent.h"
#include "foundation/MException.h"
#include "module/ModuleCommandProcessor.h"
#include "module/Runtime.h"

#include <windows.h>

namespace
{

const wchar_t className[] = L"TestModule";
const ClassName testModuleName(className);

void Do(Deed deed)
{
    static MFlowLocation location(className, L"Do");
    MError error;
    switch (deed) {
    case Deed::Nothing:
        location.SetLine(__LINE__).LogTimingPoint();
        break;
    case Deed::Raise:
        location.SetLine(__LINE__).RaiseRootError(error, L"AsTold");
        error.AddParameter(L"answer", 42);
        location.Throw(error);
    case Deed::ShutDown:
        Varek::Runtime::Shutdown();
        break;
    case Deed::Fault:
        *reinterpret_cast<volatile int*>(faultAddress) = 1;
        break;
    case Deed::ThrowForeign:
        throw 7;
    case Deed::Hang:
        Sleep(INFINITE);
    }
}

class DeedCommand : public MCommandSynchronous
{
public:
    DeedCommand(const MExceptionSlot& slot, Deed deed) : MCommandSynchronous(slot), deed(deed) {}

private:
    void Execute() override { Do(deed); }

    Deed deed;
};

class DeedEvent final : public MDesyncEvent
{
public:
    DeedEvent(Deed deed, HANDLE done) : deed(deed), done(done) {}

    void Fire() override
    {
        try {
            Do(deed);
        } catch (MException&) {
            SetEvent(done);
            throw;
        }
        SetEvent(done);
    }

private:
    Deed deed;
    HANDLE done;
};

/// An engine thread of the module's own, which fails as the module's threads fail.
class DeedThread : public MEngineThread
{
public:
    explicit DeedThread(Deed deed)
        : MEngineThread(&ModuleCommandProcessor::GetInstance()), deed(deed)
    {
    }
    ~DeedThread() override { ForceStop(); }

private:
    void ThreadFunction() override
    {
        SignalThreadStarted();
        Do(deed);
    }
    void OnFlush() override {}
    void OnStop() override {}

    Deed deed;
};

void DoOnProcessor(Deed deed)
{
    const MExceptionSlot slot(std::auto_ptr<MException>(new MException));
    ModuleCommandProcessor::GetInstance().GetCommandProcessor()->ExecuteSynchronously(
        std::auto_ptr<MCommandSynchronous>(new DeedCommand(slot, deed)));
    if (slot->GetErrorCount() != 0)
        ThrowException(*slot.Get());
}

void DoOnScheduler(Deed deed)
{
    const PlatformEvent done(EventReset::Automatic);
    ModuleCommandProcessor::GetInstance().GetDesyncScheduler()->ScheduleDesyncEvent(
        new DeedEvent(deed, done));
    WaitForSingleObject(done, INFINITE);
}

void DoOnOwnThread(Deed deed)
{
    DeedThread thread(deed);
    thread.Start();
    thread.Stop();
}

} // namespace

extern "C" __declspec(dllexport) void TestModuleDo(Place place, Deed deed)
{
    if (place == Place::Processor)
        DoOnProcessor(deed);
    else if (place == Place::Scheduler)
        DoOnScheduler(deed);
    else
        DoOnOwnThread(deed);
}
