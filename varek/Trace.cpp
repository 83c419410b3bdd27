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

} // namespace varek
