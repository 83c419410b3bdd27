#include "diagnostics/KLoggerInitialiser.h"

#include "diagnostics/KLogger.h"

KLoggerInitialiser::KLoggerInitialiser()
{
    KLogger::GetModuleLogger()->SetObjectName(this, "KLogger initialiser");
}
