#include "varek/Trace.h"

#include "diagnostics/ClassName.h"

namespace varek
{

TracedLocation::TracedLocation(const wchar_t* className, const wchar_t* functionName)
    : MFlowLocation(className, functionName)
{
    if (className)
        ClassName registered(className);
}

TracedLocation::TracedLocation(const wchar_t* className, const wchar_t* functionName,
                               const void* object, std::int32_t line)
    : TracedLocation(className, functionName)
{
    SetObject(object).SetLine(line);
}

} // namespace varek
