#include "tests/filers/ChainModule.h"

#include "engine/MEngineThread.h"
#include "foundation/MException.h"
#include "module/ModuleCommandProcessor.h"

namespace
{

class FailingThread : public MEngineThread
{
public:
    explicit FailingThread(const std::wstring& text)
        : MEngineThread(&ModuleCommandProcessor::GetInstance()), cause(text.c_str())
    {
        cause.AddParameter(L"pressure", 17);
    }

private:
    void ThreadFunction() override
    {
        SignalThreadStarted();
        MException exception(cause);
        exception.AddError(MError(L"Plant.Run:Stopped & cold"));
        ThrowException(exception);
    }
    void OnFlush() override {}
    void OnStop() override {}

    CarryingError cause;
};

} // namespace

void FailOnEngineThread(const std::wstring& text, TextReceiver* receiver)
{
    Varek::Runtime::RegisterFatalErrorHandlers(
        std::auto_ptr<TextReceiver>(receiver),
        std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*>>());
    {
        FailingThread thread(text);
        thread.Start();
        thread.Stop();
    }
    Varek::Runtime::Shutdown();
}
