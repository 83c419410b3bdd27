// Threads as the machine runs them.
//
// The kernel's own lock would order all that goes through it for a tool that looks for races. So it
// is kept from the tool's sight, and only what a call promises is told: a wait has seen what led to
// the signal, an owner of a section what the last one did.

#include "explore/kernel/Handles.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>

#include <pthread.h>
#include <windows.h>

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define WATCHED
#endif
#endif

#ifdef WATCHED
#include <sanitizer/tsan_interface.h>

extern "C" void AnnotateIgnoreSyncBegin(const char* file, int line);
extern "C" void AnnotateIgnoreSyncEnd(const char* file, int line);
extern "C" void AnnotateIgnoreReadsBegin(const char* file, int line);
extern "C" void AnnotateIgnoreReadsEnd(const char* file, int line);
extern "C" void AnnotateIgnoreWritesBegin(const char* file, int line);
extern "C" void AnnotateIgnoreWritesEnd(const char* file, int line);
#endif

namespace
{

// Made at the first call, which the static start-up makes, and never destroyed: threads may wait to
// the end of the process and beyond.

std::mutex& Kernel()
{
    static std::mutex& kernel = *new std::mutex;
    return kernel;
}

std::condition_variable& Change()
{
    static std::condition_variable& change = *new std::condition_variable;
    return change;
}

void Hide()
{
#ifdef WATCHED
    AnnotateIgnoreSyncBegin(__FILE__, __LINE__);
    AnnotateIgnoreReadsBegin(__FILE__, __LINE__);
    AnnotateIgnoreWritesBegin(__FILE__, __LINE__);
#endif
}

void Show()
{
#ifdef WATCHED
    AnnotateIgnoreWritesEnd(__FILE__, __LINE__);
    AnnotateIgnoreReadsEnd(__FILE__, __LINE__);
    AnnotateIgnoreSyncEnd(__FILE__, __LINE__);
#endif
}

std::uint32_t& IdOfNewThread()
{
    static thread_local std::uint32_t id = NextThreadId();
    return id;
}

struct ThisThread : ThreadState {
    ThisThread() : ThreadState{IdOfNewThread(), 0, nullptr, false} {}
    ~ThisThread()
    {
        Turn turn("the end of a thread");
        AbandonMutexes(id);
        turn.Changed();
    }
};

struct NewThread {
    std::uint32_t id;
    void (*body)(void*);
    void* context;
};

void* RunNewThread(void* context)
{
    const NewThread thread = *static_cast<NewThread*>(context);
    std::free(context);
    IdOfNewThread() = thread.id;
    thread.body(thread.context);
    return nullptr;
}

} // namespace

Turn::Turn(const char*, Entry)
{
    Hide();
    CurrentThread();
    Kernel().lock();
}

Turn::~Turn()
{
    Kernel().unlock();
    Show();
}

void Turn::Changed()
{
    Change().notify_all();
}

bool Turn::AwaitCondition(bool (*ready)(void*), void* context, std::uint32_t timeoutMs)
{
    std::unique_lock<std::mutex> lock(Kernel(), std::adopt_lock);
    const auto isReady = [=] { return ready(context); };
    bool answer = true;
    if (timeoutMs == INFINITE)
        Change().wait(lock, isReady);
    else
        answer = Change().wait_for(lock, std::chrono::milliseconds(timeoutMs), isReady);
    lock.release();
    return answer;
}

void Turn::Release(void* object)
{
#ifdef WATCHED
    Show();
    __tsan_release(object);
    Hide();
#else
    static_cast<void>(object);
#endif
}

void Turn::Acquire(void* object)
{
#ifdef WATCHED
    Show();
    __tsan_acquire(object);
    Hide();
#else
    static_cast<void>(object);
#endif
}

ThreadState& CurrentThread()
{
    static thread_local ThisThread state;
    return state;
}

// Takes no memory that the suites count.
void RunThread(std::uint32_t id, void (*body)(void*), void* context)
{
    NewThread* const thread = static_cast<NewThread*>(std::malloc(sizeof *thread));
    *thread = {id, body, context};
    pthread_t made;
    pthread_create(&made, nullptr, RunNewThread, thread);
    pthread_detach(made);
}

std::uint32_t NextThreadId()
{
    static std::atomic<std::uint32_t> last{0};
    return last += 4;
}

std::int64_t CurrentTime()
{
    return std::chrono::steady_clock::now().time_since_epoch().count();
}
