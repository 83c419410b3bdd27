#include "diagnostics/MDiagnosticsRegistry.h"

#include "diagnostics/MKLoggerAdapter.h"

const wchar_t MDiagnosticsRegistry::className[] = L"MDiagnosticsRegistry";

MDiagnosticsRegistry* GetDiagnosticsRegistry()
{
    static MDiagnosticsRegistry* const registry = new MDiagnosticsRegistry;
    return registry;
}

MDiagnosticsRegistry::MDiagnosticsRegistry()
    : implementation(MKLoggerAdapter::GetRegistryImplementation())
{
}

void MDiagnosticsRegistry::RegisterClassName(std::uint32_t classId, const wchar_t* name)
{
    implementation->RegisterClassName(classId, name);
}

void MDiagnosticsRegistry::RegisterFunctionName(std::uint32_t classId, std::uint32_t functionId,
                                                const wchar_t* name)
{
    implementation->RegisterFunctionName(classId, functionId, name);
}

void MDiagnosticsRegistry::RegisterObjectName(const void* object, const wchar_t* name)
{
    implementation->RegisterObjectName(object, name);
}

void MDiagnosticsRegistry::RegisterThreadName(const wchar_t* name)
{
    implementation->RegisterThreadName(name);
}

void MDiagnosticsRegistry::RegisterStateName(std::uint32_t classId, std::uint32_t state,
                                             const wchar_t* name)
{
    implementation->RegisterStateName(classId, state, name);
}

void MDiagnosticsRegistry::RegisterErrorName(std::uint32_t errorId, const wchar_t* name)
{
    implementation->RegisterErrorName(errorId, name);
}
