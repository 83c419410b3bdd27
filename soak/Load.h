#pragma once

#include "diagnostics/CrashDump.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

namespace varek
{
class Host;
}

/// Threads of a host that do what there is to do in turn, commands, events, documents, threads and
/// dumps, and rest in between, so that all of them together take about a fifth of a processor.
/// Failures are told, not raised.
class Load
{
public:
    /// What there is to do.
    static const std::vector<std::string>& Kinds();

    /// Does only what is of those kinds.
    Load(const varek::Host& host, const std::vector<std::string>& kinds);
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;

    /// Comes back when all of them have stopped.
    ~Load();

    /// Keeps the threads from work for as long as it lives, once they have done what they are at.
    class Pause
    {
    public:
        /// Ends the process as failed when they are not done within minutes.
        explicit Pause(Load& load);

    private:
        std::unique_lock<std::shared_timed_mutex> lock;
    };

    /// How often something has been done.
    unsigned long long Done() const { return done; }

    /// What came out wrong, empty when nothing did. The thread that met it has stopped. While
    /// paused.
    const std::string& Failure() const { return failure; }

private:
    void Run(unsigned number);
    void Do(const std::function<void()>& activity);
    void TakeMinidump();
    void Tell(const std::string& what);

    const varek::Host& host;
    const std::vector<std::string>& kinds;
    std::mutex dumping;
    CrashDump dump;                 // guarded by `dumping`
    std::shared_timed_mutex atWork; // shared by those who work; guards the failure
    std::atomic<bool> ends{false};
    std::atomic<unsigned long long> done{0};
    std::string failure;
    std::vector<std::thread> threads;
};
