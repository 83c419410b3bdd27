#pragma once

#include "engine/MMutex.h"

/// Holds an `MMutex` from construction to the end of the block, however the block is left.
class MMutexLock
{
public:
    /// Waits for the mutex, which must outlive this object.
    explicit MMutexLock(MMutex& mutex) : mutex(mutex) { mutex.Lock(); }
    ~MMutexLock() { mutex.Unlock(); }
    MMutexLock(const MMutexLock&) = delete;
    MMutexLock& operator=(const MMutexLock&) = delete;

private:
    MMutex& mutex;
};
