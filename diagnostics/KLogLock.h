#pragma once

#include "diagnostics/LockRules.h"

#include <windows.h>

/// A critical section that knows whether it is ready: until `Initialise`, entering and leaving do
/// nothing. The thread that holds it may enter again. It is never deleted, since the log outlives
/// everything that could delete it.
class VAREK_LOCK_RULE(capability("mutex")) KLogLock
{
public:
    /// Makes it a lock. Once, before a second thread can come to it.
    void Initialise();

    /// Waits for as long as another thread holds it.
    void Enter() VAREK_LOCK_RULE(acquire_capability());

    /// Once for each `Enter`, on the same thread.
    void Leave() VAREK_LOCK_RULE(release_capability());

private:
    bool initialised = false;
    CRITICAL_SECTION criticalSection;
};
