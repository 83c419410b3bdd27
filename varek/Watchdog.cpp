#include "varek/Watchdog.h"

#include "diagnostics/MFlowLogger.h"
#include "varek/Errors.h"

#include <algorithm>
#include <sstream>

#include <windows.h>

namespace varek
{

namespace
{

/// A thread at work. Taken by that thread; looked at by the watchdog while `since` is not 0.
struct Place {
    std::atomic<bool> taken;
    std::atomic<WatchedWork> work;
    std::atomic<unsigned long> threadId;
    std::atomic<bool> told;
    std::atomic<std::uint64_t> since; // in milliseconds of the system's
};

Place places[64];

std::string TakeDump()
{
    std::ostringstream dump;
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(dump);
    return dump.str();
}

} // namespace

std::atomic<bool> detail::Watched::isOn;

int detail::Watched::Enter(WatchedWork work)
{
    for (int i = 0; i < 64; ++i) {
        Place& place = places[i];
        if (place.taken.exchange(true))
            continue;
        place.work = work;
        place.threadId = GetCurrentThreadId();
        place.told = false;
        place.since = GetTickCount64();
        return i;
    }
    return -1;
}

void detail::Watched::Leave(int place)
{
    places[place].since = 0;
    places[place].taken = false;
}

Watchdog::Watchdog(std::chrono::milliseconds limit, Report report)
    : limit(limit), report(std::move(report))
{
    static TracedLocation location(L"varek", L"Watchdog");
    worker.Every(std::max(limit / 4, std::chrono::milliseconds(1)), [this] { Look(); });
    if (detail::Watched::isOn.exchange(true))
        Raise(location.SetObject(this), L"AlreadyOn").Throw();
    try {
        worker.Start();
    } catch (...) {
        detail::Watched::isOn = false;
        throw;
    }
}

Watchdog::~Watchdog()
{
    detail::Watched::isOn = false;
}

void Watchdog::Look()
{
    for (Place& place : places) {
        const std::uint64_t since = place.since;
        const std::uint64_t now = GetTickCount64();
        if (since == 0 || now - since < static_cast<std::uint64_t>(limit.count()))
            continue;
        if (!place.told.exchange(true))
            report({place.work, place.threadId,
                    std::chrono::milliseconds(static_cast<long long>(now - since)), TakeDump()});
    }
}

} // namespace varek
