#pragma once

#include <cstdint>

class MDiagnosticsRegistryImplementation;

/// The holder through which a module names what its log shows: classes, functions, errors, states,
/// objects and threads.
///
/// Ids of classes, functions and errors come from `FlowId` of the literal that is also the name.
/// The first name of an id wins for good. Names are wide, null-terminated, and shown by the low 8
/// bits of each unit. Any thread may register; std::bad_alloc can come out.
class MDiagnosticsRegistry
{
public:
    /// The class literal of the registry itself.
    static const wchar_t className[];

    /// Holds the module's own registry.
    MDiagnosticsRegistry();

    void RegisterClassName(std::uint32_t classId, const wchar_t* name);
    void RegisterFunctionName(std::uint32_t classId, std::uint32_t functionId, const wchar_t* name);
    void RegisterObjectName(const void* object, const wchar_t* name);

    /// Names the calling thread.
    void RegisterThreadName(const wchar_t* name);

    /// Names a state, 0 to 99, of a class.
    void RegisterStateName(std::uint32_t classId, std::uint32_t state, const wchar_t* name);
    void RegisterErrorName(std::uint32_t errorId, const wchar_t* name);

private:
    MDiagnosticsRegistryImplementation* implementation;
};

/// The module's registry, made at the first call and never freed.
MDiagnosticsRegistry* GetDiagnosticsRegistry();
