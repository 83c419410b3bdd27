#pragma once

#include "engine/PlatformEvent.h"

#include <windows.h>

/// The floor of the engine's queue: a fixed ring of pointers under a critical section, with an
/// event that is set while it holds any.
class HandWrittenQueue
{
public:
    HandWrittenQueue() { InitializeCriticalSection(&lock); }
    ~HandWrittenQueue() { DeleteCriticalSection(&lock); }

    HANDLE Event() const { return notEmpty; }

    /// The caller keeps it from overflowing.
    void Put(void* element)
    {
        EnterCriticalSection(&lock);
        elements[(head + count++) % capacity] = element;
        SetEvent(notEmpty);
        LeaveCriticalSection(&lock);
    }

    /// Null when there is none.
    void* Get()
    {
        void* element = nullptr;
        EnterCriticalSection(&lock);
        if (count > 0) {
            element = elements[head++ % capacity];
            if (--count == 0)
                ResetEvent(notEmpty);
        }
        LeaveCriticalSection(&lock);
        return element;
    }

private:
    static const unsigned capacity = 256;

    CRITICAL_SECTION lock;
    PlatformEvent notEmpty{EventReset::Manual};
    void* elements[capacity];
    unsigned head = 0;
    unsigned count = 0;
};
