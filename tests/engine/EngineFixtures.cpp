#include "tests/engine/EngineFixtures.h"

#include "foundation/MException.h"
#include "tests/support/Raised.h"

#include <windows.h>

namespace
{

class ActionFunctor final : public MCallbackFunctor
{
public:
    explicit ActionFunctor(const Action& action) : action(&action) {}
    void Invoke() override { (*action)(); }

private:
    const Action* action;
};

class ActionEvent final : public MDesyncEvent
{
public:
    explicit ActionEvent(const Action& action) : action(&action) {}
    void Fire() override { (*action)(); }

private:
    const Action* action;
};

class ActionCommand : public MCommandSynchronous
{
public:
    ActionCommand(const Action& action, const MExceptionSlot& slot)
        : MCommandSynchronous(slot), action(action)
    {
    }

private:
    void Execute() override { action(); }

    Action action;
};

} // namespace

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
    onError();
}

void ScriptedThread::Serve(HANDLE event, const Action& action)
{
    MCallbackFunctorPtr functor = FunctorFor(action);
    AddEvent(event, functor.get());
    functor.release();
}

void ScriptedThread::ThreadFunction()
{
    onStart();
    do
        WaitForEvents(waitForEver);
    while (!IsStopRequested());
}

MCallbackFunctorPtr FunctorFor(const Action& action)
{
    return MCallbackFunctorPtr(new ActionFunctor(action));
}

MDesyncEvent* NewEvent(const Action& action)
{
    return new ActionEvent(action);
}

std::auto_ptr<MCommandSynchronous> NewCommand(const Action& action, const MExceptionSlot& slot)
{
    return std::auto_ptr<MCommandSynchronous>(new ActionCommand(action, slot));
}

MExceptionSlot NewSlot()
{
    return MExceptionSlot(std::auto_ptr<MException>(new MException));
}

void Raise(const wchar_t* code)
{
    throw MException(MError(code));
}
