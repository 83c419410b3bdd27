#pragma once

#include "varek/Watched.h"
#include "varek/Worker.h"

#include <chrono>
#include <functional>
#include <string>

namespace varek
{

/// A call or an event that runs longer than it should.
struct Overrun {
    WatchedWork work;                  ///< of what kind it is
    unsigned long threadId;            ///< where it runs
    std::chrono::milliseconds running; ///< for how long it has been running
    std::string dump;                  ///< the flight recorder at this moment, as text
};

/// Tells when a function given to `Call`, `CallFor`, `CallAsync` or `Post` of this module runs
/// longer than it should, while it still runs: once for each.
///
///     varek::Watchdog watchdog(std::chrono::seconds(5), [](const varek::Overrun& overrun) {
///         std::ofstream("overrun.log") << overrun.dump;
///     });
///
/// It looks four times within the limit, on a worker's thread, where the report runs too; what the
/// report raises ends the watch, as told for `Worker`. It watches for as long as it lives, or until
/// the module is shut down. Without one, a call or an event costs one look at a flag more. There is
/// one watchdog in a module at a time: a second raises "varek.Watchdog:AlreadyOn".
///
/// Commands and events of hand-written classes are not seen. More than 64 functions at work at once
/// are not either.
class Watchdog
{
public:
    /// Takes the report.
    typedef std::function<void(const Overrun&)> Report;

    /// @{
    /// Begins to watch; starts the module if need be.
    template <class Rep, class Period>
    Watchdog(std::chrono::duration<Rep, Period> limit, Report report)
        : Watchdog(std::chrono::duration_cast<std::chrono::milliseconds>(limit), std::move(report))
    {
    }
    Watchdog(std::chrono::milliseconds limit, Report report);
    /// @}
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;
    ~Watchdog();

private:
    void Look();

    std::chrono::milliseconds limit;
    Report report;
    Worker worker;
};

} // namespace varek
