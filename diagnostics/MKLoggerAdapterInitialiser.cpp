#include "diagnostics/MKLoggerAdapterInitialiser.h"

#include "diagnostics/MKLoggerAdapter.h"

#include <cstdlib>

namespace
{

// The logger outlives every other static, so there is nothing to undo at exit.
void LeaveLoggerAlone() {}

} // namespace

MKLoggerAdapterInitialiser::MKLoggerAdapterInitialiser()
{
    MKLoggerAdapter::GetRegistryImplementation()->RegisterObjectName(
        this, L"MKLoggerAdapter initialiser");
    std::atexit(LeaveLoggerAlone);
}
