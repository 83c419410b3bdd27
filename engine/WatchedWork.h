#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>

/// Marks the calling thread as at a command or an event, from construction to the end of the block,
/// so that a watchdog can tell what takes long. Costs one look at a flag while nobody watches.
///
/// More than 64 threads at work at once are not all seen.
class WatchedWork
{
public:
    /// What a thread is at.
    enum class Kind { Command, Event };

    /// Takes what has been going on for `running`.
    typedef std::function<void(Kind kind, unsigned long threadId,
                               std::chrono::milliseconds running)>
        Tell;

    /// Marks the calling thread, where somebody watches.
    explicit WatchedWork(Kind kind)
        : place(isWatched.load(std::memory_order_relaxed) ? Enter(kind) : -1)
    {
    }
    WatchedWork(const WatchedWork&) = delete;
    WatchedWork& operator=(const WatchedWork&) = delete;
    ~WatchedWork()
    {
        if (place >= 0)
            Leave(place);
    }

    /// Has the work marked that begins from now on. False when somebody watches already.
    static bool BeginWatching();
    /// Has no more work marked.
    static void EndWatching();

    /// Tells of the work that has been going on for `limit` or longer, once each. One thread.
    static void TellOverdue(std::chrono::milliseconds limit, const Tell& tell);

private:
    static int Enter(Kind kind);
    static void Leave(int place);

    static std::atomic<bool> isWatched;

    int place;
};
