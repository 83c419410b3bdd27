#pragma once

#include <atomic>
#include <cstdint>

namespace varek
{

/// What a watchdog watches.
enum class WatchedWork { Call, Event };

namespace detail
{

/// Marks the calling thread as at work, for a watchdog, from construction to the end of the block.
/// Costs one look at a flag while none is on.
class Watched
{
public:
    explicit Watched(WatchedWork work)
        : place(isOn.load(std::memory_order_relaxed) ? Enter(work) : -1)
    {
    }
    Watched(const Watched&) = delete;
    Watched& operator=(const Watched&) = delete;
    ~Watched()
    {
        if (place >= 0)
            Leave(place);
    }

    /// Whether there is a watchdog.
    static std::atomic<bool> isOn;

private:
    static int Enter(WatchedWork work);
    static void Leave(int place);

    int place;
};

} // namespace detail
} // namespace varek
