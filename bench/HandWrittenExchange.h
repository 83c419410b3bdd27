#pragma once

#include "bench/HandWrittenQueue.h"

#include <thread>

/// The floor of the command processor: a thread that completes one empty request after the other,
/// with the kernel calls that such an exchange takes and nothing else. No command is allocated, no
/// failure looked for, nothing traced.
class HandWrittenExchange
{
public:
    HandWrittenExchange() : thread(&HandWrittenExchange::Loop, this) {}
    ~HandWrittenExchange()
    {
        SetEvent(stop);
        thread.join();
    }

    /// Queues a request and returns when it is done.
    void Execute()
    {
        if (WaitForSingleObject(abort, 0) == WAIT_OBJECT_0)
            return;
        const HANDLE completion = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        queue.Put(completion);
        const HANDLE handles[] = {completion, abort};
        WaitForMultipleObjects(2, handles, FALSE, INFINITE);
        CloseHandle(completion);
    }

private:
    /// Waits on as many handles as the command processor does.
    void Loop()
    {
        const HANDLE handles[] = {flush, stop, queue.Event()};
        do {
            if (WaitForMultipleObjects(3, handles, FALSE, INFINITE) != WAIT_OBJECT_0 + 2)
                continue;
            if (const HANDLE completion = queue.Get())
                SetEvent(completion);
        } while (WaitForSingleObject(stop, 0) != WAIT_OBJECT_0);
    }

    HandWrittenQueue queue;
    PlatformEvent abort{EventReset::Manual};
    PlatformEvent flush{EventReset::Automatic};
    PlatformEvent stop{EventReset::Manual};
    std::thread thread;
};
