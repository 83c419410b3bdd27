#pragma once

#include "diagnostics/MFlowScope.h"

#include <atomic>
#include <cstdint>

class MError;
class MException;

/// The static description of one traced function, and its way into the log.
///
/// A traced function starts with a location of its own; a member function sets the object on every
/// entry, because all instances share the location:
///
///     void Pump::Drain()
///     {
///         static MFlowLocation location(className, L"Drain");
///         MFlowScope scope(location.SetObject(this)); // recorded again when the block is left
///         ...
///     }
///
/// A constructor ends with `location.SetObject(this).SetLine(__LINE__).LogConstruction()`, a
/// destructor begins with `LogDestruction`; both name the function by a literal of the class, with
/// a tilde in front for the destructor. A failure is raised in one fixed order:
///
///     MError error;
///     location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"PumpBlocked");
///     error.AddParameter(L"pressure", pressure);
///     location.Throw(error);
///
/// The class literal must be the one array of the class, since its address is the id in the log. A
/// traced class that declares none logs and raises under that of its base class, if it has one.
/// Recording costs no lock, no allocation and no text, and cannot fail. Two threads in the same
/// function share the location, so a record can show the other one's object or line.
class MFlowLocation
{
public:
    /// Names the function in the log. The literals are kept by address.
    MFlowLocation(const wchar_t* className, const wchar_t* functionName);

    /// The object of what is recorded next, null for none. Its address is recorded, nothing else.
    MFlowLocation& SetObject(const void* newObject)
    {
        object.store(newObject, std::memory_order_relaxed);
        return *this;
    }

    /// The source line of what is recorded next, -1 until it is set.
    MFlowLocation& SetLine(std::int32_t newLine)
    {
        line.store(newLine, std::memory_order_relaxed);
        return *this;
    }

    /// Fills and opens `scope` with two numbers of the caller's choice.
    void OpenScope(MFlowScope& scope, std::uint32_t a, std::uint32_t b);

    /// A single mark with two numbers of the caller's choice.
    void LogTimingPoint(std::uint32_t a = 0, std::uint32_t b = 0);

    /// Records that the object has come into being, and the line.
    void LogConstruction();

    /// Records that the object is about to go, and the line.
    void LogDestruction();

    /// `state` is shown by the name registered for it under this location's class.
    void LogStateChange(std::uint32_t state, std::uint32_t extra);

    /// Records a new failure, named by `literal` in the log, and fills `error` with its Code:
    /// class, point, function, colon, literal. The parameters start out empty.
    void RaiseRootError(MError& error, const wchar_t* literal);

    /// Throws an `MException` that holds `error`.
    [[noreturn]] void Throw(MError& error);

    /// Records that a handler swallows `exception`.
    void DismissError(const MException& exception);

private:
    void LogEvent(std::uint32_t eventIndex, std::uint32_t param1, std::uint32_t param2);

    std::uint32_t Line() const
    {
        return static_cast<std::uint32_t>(line.load(std::memory_order_relaxed));
    }

    const wchar_t* className;
    const wchar_t* functionName;
    std::atomic<const void*> object; // relaxed, like the line: a plain store that others may see
    std::atomic<std::int32_t> line;
};
