#include "tests/filers/ChainModule.h"

#include "diagnostics/MFlowLocation.h"
#include "engine/MEngineThread.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MOutFilerTaggedXml.h"
#include "module/ModuleCommandProcessor.h"
#include "tests/filers/ErrorChains.h"

namespace
{

class FailingThread : public MEngineThread
{
public:
    explicit FailingThread(IThreadErrorHandler* errorHandler) : MEngineThread(errorHandler) {}

private:
    void ThreadFunction() override
    {
        SignalThreadStarted();
        MError cause(L"Pump.Drain:Blocked");
        cause.AddParameter(L"pressure", 17);
        MException exception(cause);
        exception.AddError(MError(L"Plant.Run:Stopped & cold"));
        ThrowException(exception);
    }
    void OnFlush() override {}
    void OnStop() override {}
};

} // namespace

void FailOnEngineThread(TextReceiver* receiver)
{
    Varek::Runtime::RegisterFatalErrorHandlers(
        std::auto_ptr<TextReceiver>(receiver),
        std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*>>());
    FailingThread thread(&ModuleCommandProcessor::GetInstance());
    thread.Start();
    thread.Stop();
}

void CarryChain(const std::wstring& text, TextReceiver& receiver)
{
    try {
        static MFlowLocation location(L"ChainModule", L"CarryChain");
        CarryingError error(text.c_str());
        location.Throw(error);
    } catch (const MException& exception) {
        MOutFilerTaggedXml document(L"ExceptionChain", nullptr);
        MFilerTaggedPair filer(nullptr, &document);
        MString filed;
        exception.Write(filer, L"Exception");
        document.GetDocumentText(&filed);
        receiver(filed.c_str());
    }
}

void StopModule()
{
    Varek::Runtime::Shutdown();
}
