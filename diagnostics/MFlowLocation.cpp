#include "diagnostics/MFlowLocation.h"

#include "diagnostics/FlowEvent.h"
#include "diagnostics/FlowId.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLogger.h"

MFlowLocation::MFlowLocation(const wchar_t* className, const wchar_t* functionName)
    : className(className), functionName(functionName), object(nullptr), line(-1)
{
    GetDiagnosticsRegistry()->RegisterFunctionName(FlowId(className), FlowId(functionName),
                                                   functionName);
}

void MFlowLocation::OpenScope(MFlowScope& scope, std::uint32_t a, std::uint32_t b)
{
    scope.param1 = a;
    scope.param2 = b;
    scope.active = true;
    scope.className = className;
    scope.functionName = functionName;
    scope.object = object.load(std::memory_order_relaxed);
    LogEvent(FlowEventScopePush, a, b);
}

void MFlowLocation::LogTimingPoint(std::uint32_t a, std::uint32_t b)
{
    LogEvent(FlowEventTimingPoint, a, b);
}

void MFlowLocation::LogConstruction()
{
    LogEvent(FlowEventConstruction, 0, Line());
}

void MFlowLocation::LogDestruction()
{
    LogEvent(FlowEventDestruction, 0, Line());
}

void MFlowLocation::LogStateChange(std::uint32_t state, std::uint32_t extra)
{
    LogEvent(FlowEventStateChange, state, extra);
}

void MFlowLocation::LogEvent(std::uint32_t eventIndex, std::uint32_t param1, std::uint32_t param2)
{
    if (MFlowLogger* const logger = MFlowLogger::GetInstance())
        logger->GetImplementation()->LogEvent(eventIndex, param1, param2, FlowId(className),
                                              FlowId(functionName),
                                              object.load(std::memory_order_relaxed));
}
