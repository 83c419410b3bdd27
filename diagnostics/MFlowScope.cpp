#include "diagnostics/MFlowScope.h"

#include "diagnostics/FlowEvent.h"
#include "diagnostics/FlowId.h"
#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"

MFlowScope::MFlowScope(MFlowLocation& location, std::uint32_t a, std::uint32_t b)
{
    location.OpenScope(*this, a, b);
}

void MFlowScope::Close()
{
    if (MFlowLogger* const logger = MFlowLogger::GetInstance())
        logger->GetImplementation()->LogEvent(FlowEventScopePop, param1, param2, FlowId(className),
                                              FlowId(functionName), object);
}
