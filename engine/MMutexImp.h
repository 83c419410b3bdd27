#pragma once

/// A recursive lock of the platform, behind `MMutex`.
class MMutexImp
{
public:
    virtual ~MMutexImp() {}

    /// True when the lock is held.
    virtual bool Lock() = 0;

    /// True when the lock was free, or already the caller's, and is now held once more.
    virtual bool TryLock() = 0;

    /// Once for each time that the lock was taken, on the same thread.
    virtual void Unlock() = 0;
};

/// Makes a lock, owned by the caller. Null when the allocation answered null.
MMutexImp* CreateMutexImp();
