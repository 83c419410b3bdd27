#include "module/Runtime.h"

#include "diagnostics/MFlowLogger.h"
#include "module/ModuleCommandProcessor.h"

namespace Varek
{
namespace Runtime
{

void AttachMFlowLogger(MFlowLogger* logger)
{
    if (logger)
        MFlowLogger::GetInstance()->Attach(logger);
}

void RegisterFatalErrorHandlers(
    std::auto_ptr<CallbackFunctor1Param<const std::wstring&>> onSpontaneousError,
    std::auto_ptr<CallbackFunctor1Param<_EXCEPTION_POINTERS*>> onCrash)
{
    ModuleCommandProcessor::SpontaneousErrorCallback spontaneous(onSpontaneousError.release());
    ModuleCommandProcessor::CrashCallback crash(onCrash.release());
    ModuleCommandProcessor::GetInstance().RegisterCallbacks(std::move(spontaneous),
                                                            std::move(crash));
}

void Shutdown()
{
    ModuleCommandProcessor::GetInstance().Stop();
}

} // namespace Runtime
} // namespace Varek
