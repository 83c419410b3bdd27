#pragma once

#include "diagnostics/FlowId.h"
#include "diagnostics/MDiagnosticsRegistry.h"

/// Names a class in the log, by the literal that its locations use as their class:
///
///     const wchar_t Pump::className[] = L"Pump";
///     static const ClassName pumpName(Pump::className); // beside the class's functions
///
/// Without it the log shows the class as "(unknown)".
struct ClassName {
    /// Registers `literal` under its own address. Raises std::bad_alloc.
    explicit ClassName(const wchar_t* literal)
    {
        GetDiagnosticsRegistry()->RegisterClassName(FlowId(literal), literal);
    }
};
