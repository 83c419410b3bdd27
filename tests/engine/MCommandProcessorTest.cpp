#include "engine/MCommandProcessor.h"

#include "foundation/MException.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <thread>

#include <windows.h>

// That every command is deleted, whatever becomes of it, is seen by the check for leaks.

namespace
{

const Action nothing = [] {};
const char stopped[] = "MCommandProcessor.ExecuteSynchronously:ProcessorStopped";
const char aborted[] = "MCommandProcessor.ExecuteSynchronously:CommandProcessingAborted";

/// A processor that counts its stops, and whose flush can be replaced.
class Processor : public MCommandProcessor
{
public:
    explicit Processor(IThreadErrorHandler* handler = nullptr, const Action& start = nothing,
                       const Action& stop = nothing, const Action& idle = nothing,
                       std::uint32_t idleTimeoutMs = 0)
        : MCommandProcessor(handler, FunctorFor(start).release(), FunctorFor(stop).release(),
                            FunctorFor(idle).release(), idleTimeoutMs)
    {
    }
    ~Processor() override { ForceStop(); }

    using MCommandProcessor::IsStopRequested;

    Action onFlush = [this] { MCommandProcessor::OnFlush(); };

private:
    void OnFlush() override { onFlush(); }
};

std::string Execute(MCommandProcessor& processor, const Action& action,
                    const MExceptionSlot& slot = MExceptionSlot())
{
    return Raised([&] { processor.ExecuteSynchronously(NewCommand(action, slot)); });
}

/// Three callers, each with a command queued behind one that holds the processor up.
class Backlog
{
public:
    explicit Backlog(MCommandProcessor& processor)
    {
        callers.emplace_back([this, &processor] {
            Execute(processor, [this] {
                held.Open();
                go.Pass();
            });
        });
        held.Pass();
        const std::size_t handles = ListHandles().size();
        for (std::string& outcome : outcomes)
            callers.emplace_back([this, &processor, &outcome] {
                start.Pass();
                outcome = Execute(processor, [this] { ++executed; });
            });
        // A call opens its completion event just before it queues its command.
        start.Open();
        while (ListHandles().size() < handles + 6)
            Sleep(1);
        Sleep(20);
    }

    /// Lets the processor go and waits for the callers.
    void Release()
    {
        go.Open();
        for (std::thread& caller : callers)
            caller.join();
    }

    std::string outcomes[3];
    std::atomic<int> executed{0};

private:
    Gate held;
    Gate go;
    Gate start;
    std::vector<std::thread> callers;
};

} // namespace
