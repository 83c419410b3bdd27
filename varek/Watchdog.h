#pragma once

#include "engine/WatchedWork.h"
#include "varek/Worker.h"

#include <chrono>
#include <functional>
#include <string>

namespace varek
{

/// A command or an event that runs longer than it should.
struct Overrun {
    WatchedWork::Kind work;            ///< of what kind it is
    unsigned long threadId;            ///< where it runs
    std::chrono::milliseconds running; ///< for how long it has been running
    std::string dump; ///< the flight recorder at this moment, as text; empty without memory for it
};

/// Tells when a command or an event runs longer than it should, while it still runs, once for each:
/// the functions given to `Call`, `CallFor`, `CallAsync` and `Post` as well as hand-written
/// commands and events, of every processor and scheduler in this module.
///
///     varek::Watchdog watchdog(std::chrono::seconds(5), [](const varek::Overrun& overrun) {
///         std::ofstream("overrun.log") << overrun.dump;
///     });
///
/// It looks four times within the limit, on a worker's thread, where the report runs too; what the
/// report raises ends the watch, as told for `Worker`. It watches for as long as it lives, or until
/// the module is shut down; what had begun before it is not seen. Without one, a command or an
/// event costs one look at a flag more. There is one watchdog in a module at a time: a second
/// raises "varek.Watchdog:AlreadyOn".
///
/// Not seen are the functions of workers, idle functors, and more than 64 threads at work at once.
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

    /// Returns when no report runs any more. Not on the thread of its own report.
    ~Watchdog() = default;

private:
    /// Has work marked while it lives; the worker ends first.
    struct Watching {
        Watching();
        ~Watching();
    };

    void Look();

    std::chrono::milliseconds limit;
    Report report;
    Watching watching;
    Worker worker;
};

} // namespace varek
