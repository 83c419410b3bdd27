#include "diagnostics/MFlowLogger.h"

#include "diagnostics/MKLoggerAdapter.h"

MFlowLogger* MFlowLogger::instance = nullptr;

MFlowLogger* MFlowLogger::MakeInstance()
{
    instance = new MFlowLogger;
    return instance;
}

MFlowLogger::MFlowLogger() : MFlowLogger(MKLoggerAdapter::GetFlowLoggerImplementation()) {}

MFlowLogger::MFlowLogger(MFlowLoggerImplementation* implementation) : implementation(implementation)
{
}

void MFlowLogger::Attach(MFlowLogger* other)
{
    if (this != nullptr)
        implementation->AttachLogger(other ? other->implementation : nullptr);
}
