#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>

/// A thread that is already running when a measurement begins. It spins on the second processor,
/// and keeps its maker on the first, so let it live only as long as it is needed.
class SecondThread
{
public:
    SecondThread();
    SecondThread(const SecondThread&) = delete;
    SecondThread& operator=(const SecondThread&) = delete;
    ~SecondThread();

    /// Does the work on both threads at once, and returns when both are done.
    void RunOnBoth(const std::function<void()>& work);

private:
    void Loop();

    const std::uintptr_t makersProcessors; // that it may run on
    std::atomic<const std::function<void()>*> task;
    std::atomic<bool> ending;
    std::thread thread;
};
