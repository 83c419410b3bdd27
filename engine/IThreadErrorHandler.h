#pragma once

class MException;
struct _EXCEPTION_POINTERS;

/// Told of an `MException` that ends an engine thread.
class ISpontaneousErrorHandler
{
public:
    /// Called on the thread that failed, which ends afterwards.
    virtual void OnSpontaneousError(const MException& exception) = 0;

protected:
    ~ISpontaneousErrorHandler() = default;
};

/// Told of a machine fault, or of a C++ exception that is no `MException`, on an engine thread.
class ICrashHandler
{
public:
    /// Called on the faulting thread at the point of the fault, its stack intact; the fault then
    /// goes on unhandled, whatever is done here. Take no lock and keep to plain memory.
    virtual void OnUnhandledException(_EXCEPTION_POINTERS* pointers) = 0;

protected:
    ~ICrashHandler() = default;
};

/// What the owner of an engine thread is told when the thread fails. It is not owned by the thread
/// and must outlive it.
class IThreadErrorHandler : public ISpontaneousErrorHandler, public ICrashHandler
{
protected:
    ~IThreadErrorHandler() = default;
};
