#pragma once

#include "diagnostics/MFlowLoggerImplementation.h"

/// A flow logger of another kind than a module's own. It keeps nothing.
class ForeignLogger : public MFlowLoggerImplementation
{
public:
    void LogEvent(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t,
                  const void*) override
    {
    }
    void DumpToStream(std::ostream&) override {}
    bool DumpToFile() override { return false; }
    void AttachLogger(MFlowLoggerImplementation*) override {}
};
