#include "tests/engine/EngineFixtures.h"

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

void Raise(const std::string& code)
{
    MException exception(MError(L"cause"));
    exception.AddError(MError(std::wstring(code.begin(), code.end()).c_str()));
    throw MException(exception);
}
