#include "bench/support/SecondThread.h"

#include <windows.h>
#include <x86intrin.h>

namespace
{

const std::uintptr_t firstProcessor = 1;
const std::uintptr_t secondProcessor = 2;

} // namespace

SecondThread::SecondThread()
    : makersProcessors(SetThreadAffinityMask(GetCurrentThread(), firstProcessor)), task(nullptr),
      ending(false), thread(&SecondThread::Loop, this)
{
}

SecondThread::~SecondThread()
{
    ending = true;
    thread.join();
    SetThreadAffinityMask(GetCurrentThread(), makersProcessors);
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
    SetThreadAffinityMask(GetCurrentThread(), secondProcessor);
    while (!ending) {
        if (const std::function<void()>* const work = task.load()) {
            (*work)();
            task = nullptr;
        }
        _mm_pause();
    }
}
