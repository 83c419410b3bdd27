#pragma once

#include "engine/MMutex.h"

/// Holds an `MMutex` from construction to the end of the block, however the block is left.
class VAREK_LOCK_RULE(scoped_lockable) MMutexLock
{
public:
    /// Waits for the mutex, which must outlive this object.
    explicit MMutexLock(MMutex& mutex) VAREK_LOCK_RULE(acquire_capability(mutex)) : mutex(mutex)
    {
        mutex.Lock();
    }
    ~MMutexLock() VAREK_LOCK_RULE(release_capability()) { mutex.Unlock(); }
    MMutexLock(const MMutexLock&) = delete;
    MMutexLock& operator=(const MMutexLock&) = delete;

private:
    MMutex& mutex;
};
