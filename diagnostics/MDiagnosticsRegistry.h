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
    /// The class literal, which is the id of the class in the log.
    static const wchar_t className[];

    /// Holds the module's own registry.
    MDiagnosticsRegistry();

    /// Names a class by the id of its literal; `ClassName` does that.
    void RegisterClassName(std::uint32_t classId, const wchar_t* name);

    /// Names a function by the id of its literal, whatever its class; `MFlowLocation` does that.
    void RegisterFunctionName(std::uint32_t classId, std::uint32_t functionId, const wchar_t* name);

    /// Names an object by its address. What is made there later inherits the name.
    void RegisterObjectName(const void* object, const wchar_t* name);

    /// Names the calling thread. A later one that gets the same id inherits the name.
    void RegisterThreadName(const wchar_t* name);

    /// Names a state, 0 to 99, of a class.
    void RegisterStateName(std::uint32_t classId, std::uint32_t state, const wchar_t* name);

    /// Names an error by the id of its literal; `MFlowLocation::RaiseRootError` does that.
    void RegisterErrorName(std::uint32_t errorId, const wchar_t* name);

private:
    MDiagnosticsRegistryImplementation* implementation;
};

/// The module's registry, made at the first call and never freed.
MDiagnosticsRegistry* GetDiagnosticsRegistry();
