#pragma once

#include <windows.h>

/// A critical section that knows whether it is ready: until `Initialise`, entering and leaving do
/// nothing. The thread that holds it may enter again. It is never deleted, since the log outlives
/// everything that could delete it.
class KLogLock
{
public:
    /// Makes it a lock. Once, before a second thread can come to it.
    void Initialise();

    /// Waits for as long as another thread holds it.
    void Enter();

    /// Once for each `Enter`, on the same thread.
    void Leave();

private:
    bool initialised = false;
    CRITICAL_SECTION criticalSection;
};
