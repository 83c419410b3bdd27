#pragma once

#include <cstdint>

/// What the kernel knows of a thread.
struct ThreadState {
    std::uint32_t id;
    std::uint32_t lastError;
    struct Guard* guards; ///< structured exception guards, the innermost first
    bool inApartment;
};

/// A call's time inside the kernel, where one thread is at a time: all that a call does between two
/// waits happens at once.
///
/// This is all that the kernel asks of what runs threads. There are two: threads/ lets the machine
/// run them, fibers/ runs one at a time and has them take their turns in every order.
class Turn
{
public:
    /// Whether with fibers any other thread may go first. What no other can notice goes at once.
    enum class Entry { InLine, AtOnce };

    /// Enters, for the call of that name.
    explicit Turn(const char* call, Entry entry = Entry::InLine);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// Lets others in until `ready` answers true or the time has passed, and answers which.
    template <class Ready>
    bool Await(Ready ready, std::uint32_t timeoutMs)
    {
        return AwaitCondition([](void* told) { return (*static_cast<Ready*>(told))(); }, &ready,
                              timeoutMs);
    }

    /// Says that what somebody waits for may have come.
    void Changed();

    /// Tells who looks for races that what this thread has done is seen by whoever sees `object`.
    static void Release(void* object);
    static void Acquire(void* object);

private:
    bool AwaitCondition(bool (*ready)(void*), void* context, std::uint32_t timeoutMs);
};

/// The calling thread.
ThreadState& CurrentThread();

/// Runs `body(context)` on a thread of that id. Not inside a turn.
void RunThread(std::uint32_t id, void (*body)(void*), void* context);

/// An id that no thread has had.
std::uint32_t NextThreadId();

/// Nanoseconds, from anywhere.
std::int64_t CurrentTime();
