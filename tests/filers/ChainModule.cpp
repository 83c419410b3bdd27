#include "tests/filers/ChainModule.h"

#include "foundation/MException.h"
#include "module/ModuleCommandProcessor.h"

void FailCarrying(const std::wstring& text, TextReceiver* receiver)
{
    Varek::Runtime::RegisterFatalErrorHandlers(
        std::auto_ptr<TextReceiver>(receiver),
        std::auto_ptr<Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*>>());
    CarryingError cause(text.c_str());
    cause.AddParameter(L"pressure", 17);
    MException exception(cause);
    exception.AddError(MError(L"Plant.Run:Stopped & cold"));
    ISpontaneousErrorHandler& handler = ModuleCommandProcessor::GetInstance();
    handler.OnSpontaneousError(exception);
    Varek::Runtime::Shutdown();
}
