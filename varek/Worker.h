#pragma once

#include "engine/PlatformEvent.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace varek
{

/// A thread of a module's own, that waits and calls: when a handle is signalled, every so often, or
/// once after a while.
///
///     varek::Worker watcher;
///
///     void StartWatching(HANDLE folderChanged)
///     {
///         watcher.When(folderChanged, [] { SurveyFolder(); });
///         watcher.Every(std::chrono::minutes(1), [] { SaveTotals(); });
///         watcher.Start();
///     }
///
/// The functions run on the worker's thread, in the multithreaded COM apartment, one at a time; of
/// those that are due at once, the one named first goes first. They may use `Call` and `Post`, but
/// not shut the module down, which would go on without stopping the worker.
///
/// Lifetime: `Start` starts the module's own threads too if need be, and from then on a shutdown of
/// the module stops the worker first. So a worker may be a static of the module, or any object: its
/// destructor stops it. What is named and started, and in what order, is one thread's business.
///
/// Failure: what a function raises ends the worker's thread and is told to the host as for the
/// module's threads, standard exceptions as "varek.Worker:StandardException". `Stop` and `Start`
/// bring the worker back.
class Worker
{
public:
    /// What is called.
    typedef std::function<void()> Function;

    Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Stops it. Not on its own thread.
    ~Worker();

    /// @{
    /// Names what to do, up to 62 in all, before `Start`; naming while it runs raises
    /// "varek.Worker:Running". The handle stays the caller's and must stay open while the worker
    /// runs; waiting resets an automatic event. A period counts from `Start`, and what is missed
    /// while the thread is busy is made good once. `After` comes once for each `Start`. More than
    /// 2,147,483,647 ms, some 24 days, raise "varek.Worker:IntervalTooLong".
    void When(HANDLE handle, Function function);
    template <class Rep, class Period>
    void Every(std::chrono::duration<Rep, Period> period, Function function)
    {
        AddTimer(std::chrono::duration_cast<std::chrono::milliseconds>(period), true,
                 std::move(function));
    }
    template <class Rep, class Period>
    void After(std::chrono::duration<Rep, Period> delay, Function function)
    {
        AddTimer(std::chrono::duration_cast<std::chrono::milliseconds>(delay), false,
                 std::move(function));
    }
    /// @}

    /// Returns when the thread runs. Raises "varek.Worker:Running", "TooManyWaitableEvents", and
    /// "ModuleStopped" after a shutdown.
    void Start();

    /// Returns when the thread has ended; the function that it is in is waited for. Does nothing on
    /// a worker that does not run. Raises "varek.Worker:CannotStopSelf" on the worker's own thread.
    void Stop();

private:
    struct State;
    class ShutdownLink;
    struct Duty;
    class AtWork;

    void AddTimer(std::chrono::milliseconds interval, bool periodic, Function function);
    void Add(std::unique_ptr<Duty> duty);
    void StopWithModule();
    void CheckNotOwnThread(const wchar_t* code);

    std::unique_ptr<State> state;
    ShutdownLink* link; // null until the first start
};

} // namespace varek
