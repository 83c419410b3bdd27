#include "bench/support/SecondThread.h"

#include <x86intrin.h>

SecondThread::SecondThread() : task(nullptr), ending(false), thread(&SecondThread::Loop, this) {}

SecondThread::~SecondThread()
{
    ending = true;
    thread.join();
}

void SecondThread::RunOnBoth(const std::function<void()>& work)
{
    task = &work;
    work();
    while (task.load())
        _mm_pause();
}

void SecondThread::Loop()
{
    while (!ending) {
        if (const std::function<void()>* const work = task.load()) {
            (*work)();
            task = nullptr;
        }
        _mm_pause();
    }
}
