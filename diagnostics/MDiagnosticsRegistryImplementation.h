#pragma once

#include <cstdint>

/// What stands behind the `MDiagnosticsRegistry`: gives the ids in the log their names.
///
/// The first name of an id wins. Names are null-terminated and cut down to the low 8 bits of each
/// unit. Every operation may be called from any thread and may raise std::bad_alloc.
class MDiagnosticsRegistryImplementation
{
public:
    virtual ~MDiagnosticsRegistryImplementation() {}

    /// Names a class by the id of its literal.
    virtual void RegisterClassName(std::uint32_t classId, const wchar_t* name) = 0;

    /// Names a function by the id of its literal.
    virtual void RegisterFunctionName(std::uint32_t classId, std::uint32_t functionId,
                                      const wchar_t* name) = 0;

    /// Names an object by its address.
    virtual void RegisterObjectName(const void* object, const wchar_t* name) = 0;

    /// Names the calling thread.
    virtual void RegisterThreadName(const wchar_t* name) = 0;

    /// Names a state of a class, 0 to 99.
    virtual void RegisterStateName(std::uint32_t classId, std::uint32_t state,
                                   const wchar_t* name) = 0;

    /// Names an error by the id of its literal.
    virtual void RegisterErrorName(std::uint32_t errorId, const wchar_t* name) = 0;

    /// Names a message, in the space of the state names.
    virtual void RegisterMessageName(std::uint32_t messageId, const wchar_t* name) = 0;
};
