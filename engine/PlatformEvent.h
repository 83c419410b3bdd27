#pragma once

/// As <windows.h> has it, which headers do without.
typedef void* HANDLE;

/// A wait without a time limit.
const unsigned long waitForEver = 0xFFFFFFFF;

/// Whether an event is cleared by the wait that it ends, or by hand.
enum class EventReset { Automatic, Manual };

/// An unnamed event handle, initially clear, owned by the caller. Null when the system has none
/// left; waits on it then fail.
HANDLE CreatePlatformEvent(EventReset reset);

/// An unnamed event that is initially clear and closes with its owner. It goes wherever a handle
/// goes.
class PlatformEvent
{
public:
    /// Holds null when the system has no event left; waits on it then fail.
    explicit PlatformEvent(EventReset reset) : handle(CreatePlatformEvent(reset)) {}
    PlatformEvent(const PlatformEvent&) = delete;
    PlatformEvent& operator=(const PlatformEvent&) = delete;
    ~PlatformEvent();

    /// The handle, still owned by this object.
    operator HANDLE() const { return handle; }

private:
    HANDLE handle;
};
