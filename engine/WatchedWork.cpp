#include "engine/WatchedWork.h"

#include <windows.h>

namespace
{

typedef std::chrono::steady_clock Clock;

/// A thread at work. Taken by that thread; looked at by who watches while it has begun.
struct Place {
    std::atomic<bool> taken;
    std::atomic<WatchedWork::Kind> kind;
    std::atomic<unsigned long> threadId;
    std::atomic<Clock::rep> begin; // 0: not begun
    Clock::rep told;               // when that began that was told last
};

const int placeCount = 64;
Place places[placeCount];

} // namespace

std::atomic<bool> WatchedWork::isWatched;

bool WatchedWork::BeginWatching()
{
    return !isWatched.exchange(true);
}

void WatchedWork::EndWatching()
{
    isWatched = false;
}

int WatchedWork::Enter(Kind kind)
{
    for (int i = 0; i < placeCount; ++i) {
        Place& place = places[i];
        if (place.taken.exchange(true))
            continue;
        place.kind = kind;
        place.threadId = GetCurrentThreadId();
        place.begin = Clock::now().time_since_epoch().count();
        return i;
    }
    return -1;
}

void WatchedWork::Leave(int place)
{
    places[place].begin = 0;
    places[place].taken = false;
}

void WatchedWork::TellOverdue(std::chrono::milliseconds limit, const Tell& tell)
{
    for (Place& place : places) {
        const Clock::rep begin = place.begin;
        const Clock::duration running = Clock::now().time_since_epoch() - Clock::duration(begin);
        if (begin == 0 || begin == place.told || running < limit)
            continue;
        const Kind kind = place.kind;
        const unsigned long threadId = place.threadId;
        if (place.begin != begin) // it has ended, and may be another's
            continue;
        place.told = begin;
        tell(kind, threadId, std::chrono::duration_cast<std::chrono::milliseconds>(running));
    }
}
