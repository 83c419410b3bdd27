#include "tests/engine/EngineFixtures.h"

#include "tests/support/Raised.h"

#include <windows.h>

void Gate::Open()
{
    SetEvent(event);
}

void Gate::Pass()
{
    WaitForSingleObject(event, INFINITE);
}

void FailureRecorder::OnSpontaneousError(const MException& exception)
{
    failures += FailureText(exception) + ";";
    failed.Open();
}

void ScriptedThread::ThreadFunction()
{
    onStart();
    do
        WaitForEvents(waitForEver);
    while (!IsStopRequested());
    ServeStop();
}

std::auto_ptr<MCommandSynchronous> NewCommand(const Action& action, const MExceptionSlot& slot)
{
    struct Command : MCommandSynchronous {
        Command(const Action& action, const MExceptionSlot& slot)
            : MCommandSynchronous(slot), action(action)
        {
        }
        void Execute() override { action(); }
        Action action;
    };
    return std::auto_ptr<MCommandSynchronous>(new Command(action, slot));
}

MExceptionSlot NewSlot()
{
    return MExceptionSlot(std::auto_ptr<MException>(new MException));
}

void Raise(const wchar_t* code)
{
    throw MException(MError(code));
}
