#pragma once

#include "diagnostics/LockRules.h"

#include <cstdint>

class MMutexImp;

/// A recursive lock: the thread that holds it may take it again, and releases it as often. Made
/// before and destroyed after the threads that use it. Prefer `MMutexLock` to calling it directly.
class VAREK_LOCK_RULE(capability("mutex")) MMutex
{
public:
    MMutex();
    MMutex(const MMutex&) = delete;
    MMutex& operator=(const MMutex&) = delete;
    ~MMutex();

    /// Waits for the lock. False only when there was no memory for a lock at construction: such a
    /// mutex locks nothing.
    bool Lock() VAREK_LOCK_RULE(acquire_capability());

    /// Once for each successful `Lock`, on the same thread.
    void Unlock() VAREK_LOCK_RULE(release_capability());

private:
    MMutexImp* imp;
    std::int32_t lockCount; // a statistic, never below 0
};
