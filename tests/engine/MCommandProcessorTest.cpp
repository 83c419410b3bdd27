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
        for (std::string& outcome : outcomes)
            callers.emplace_back([this, &processor, &outcome] {
                ++ready;
                start.Pass();
                outcome = Execute(processor, [this] { ++executed; });
            });
        while (ready < 3)
            Sleep(1);
        // A call opens its completion event just before it queues its command.
        const std::size_t handles = ListHandles().size();
        start.Open();
        while (ListHandles().size() < handles + 3)
            Sleep(1);
        Sleep(30);
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
    std::atomic<int> ready{0};
    std::vector<std::thread> callers;
};

} // namespace

TEST(MCommandProcessor, FailureGoesIntoTheSlotAndTheThreadGoesOn)
{
    Processor processor;
    processor.Start();
    const MExceptionSlot slot = NewSlot();
    EXPECT_EQ("", Execute(
                      processor, [] { Raise(L"Broken"); }, slot));
    ASSERT_EQ(1u, slot->GetErrorCount());
    EXPECT_EQ("Broken", FailureText(*slot.Get()));

    std::uint32_t errorsAtStart = 7;
    EXPECT_EQ("", Execute(
                      processor, [&] { errorsAtStart = slot->GetErrorCount(); }, slot));
    EXPECT_EQ(0u, errorsAtStart);
    EXPECT_EQ(0u, slot->GetErrorCount());

    EXPECT_EQ("", Execute(processor, [] { Raise(L"nobody wants to know"); }));
}

TEST(MCommandProcessor, StoppedItRefusesForGood)
{
    Processor processor;
    processor.Start();
    EXPECT_FALSE(processor.IsAborted());
    processor.Stop();
    processor.Stop();
    EXPECT_TRUE(processor.IsAborted());
    EXPECT_EQ(stopped, Execute(processor, nothing));
    processor.Start();
    EXPECT_EQ(stopped, Execute(processor, nothing));
}

TEST(MCommandProcessor, StopExecutesWhatIsQueued)
{
    Processor processor;
    processor.Start();
    Backlog backlog(processor);
    std::thread stopper([&] { processor.Stop(); });
    while (!processor.IsStopRequested())
        Sleep(1);
    backlog.Release();
    stopper.join();
    for (const std::string& outcome : backlog.outcomes)
        EXPECT_EQ("", outcome);
    EXPECT_EQ(3, backlog.executed);
    EXPECT_TRUE(processor.IsAborted());
}

TEST(MCommandProcessor, FlushExecutesWhatIsQueued)
{
    Processor processor;
    processor.Start();
    Backlog backlog(processor);
    int executedAtFlush = 0;
    std::thread flusher([&] {
        processor.Flush();
        executedAtFlush = backlog.executed;
    });
    backlog.Release();
    flusher.join();
    EXPECT_EQ(3, executedAtFlush);
    processor.Flush();
}

TEST(MCommandProcessor, FailedFlushInAStopDropsTheQueueAndWakesTheCallers)
{
    FailureRecorder recorder;
    Processor processor(&recorder);
    processor.onFlush = [] { Raise(L"dismissed"); };
    processor.Start();
    Backlog backlog(processor);
    std::thread stopper([&] { processor.Stop(); });
    while (!processor.IsStopRequested())
        Sleep(1);
    backlog.Release();
    stopper.join();
    for (const std::string& outcome : backlog.outcomes)
        EXPECT_EQ(aborted, outcome);
    EXPECT_EQ(0, backlog.executed);
    EXPECT_EQ("", recorder.failures);
}

TEST(MCommandProcessor, FailingThreadRunsItsStopFunctorOnceAndTellsTheFirstFailure)
{
    FailureRecorder recorder;
    int stops = 0;
    const Action stop = [&] {
        ++stops;
        Raise(L"dismissed");
    };
    Processor processor(&recorder, nothing, stop);
    processor.onFlush = [] { Raise(L"Clogged"); };
    processor.Start();
    EXPECT_EQ("MEngineThread.Flush:ThreadExitedUnexpectedly", Raised([&] { processor.Flush(); }));
    EXPECT_EQ(1, stops);
    EXPECT_EQ("Clogged;", recorder.failures);
}

TEST(MCommandProcessor, StopFunctorIsTheLastActAndMayFail)
{
    FailureRecorder recorder;
    std::string calls;
    const Action start = [&] { calls += "start "; };
    const Action stop = [&] {
        calls += "stop";
        Raise(L"TooLate");
    };
    Processor processor(&recorder, start, stop);
    processor.onFlush = [&] { calls += "flush "; };
    processor.Start();
    EXPECT_EQ("start ", calls);
    processor.Stop();
    EXPECT_EQ("start flush stop", calls);
    EXPECT_EQ("TooLate;", recorder.failures);
}

TEST(MCommandProcessor, StartFunctorThatFailsFailsStartAndRunsNoStopFunctor)
{
    FailureRecorder recorder;
    int stops = 0;
    const Action start = [] { Raise(L"NoSetup"); };
    const Action stop = [&] { ++stops; };
    Processor processor(&recorder, start, stop);
    EXPECT_EQ("MEngineThread.Start:ThreadExitedUnexpectedly", Raised([&] { processor.Start(); }));
    EXPECT_EQ("NoSetup;", recorder.failures);
    EXPECT_EQ(0, stops);
}

TEST(MCommandProcessor, IdleFunctorRunsAfterEachTimeOutAndMayFail)
{
    FailureRecorder recorder;
    std::atomic<int> idles{0};
    const Action idle = [&] {
        ++idles;
        Raise(L"dismissed");
    };
    Processor never(&recorder, nothing, nothing, idle, 0);
    never.Start();
    Sleep(30);
    EXPECT_EQ(0, idles);

    Processor often(&recorder, nothing, nothing, idle, 5);
    often.Start();
    while (idles < 3)
        Sleep(1);
    EXPECT_EQ("", Execute(often, nothing));
    often.Stop();
    EXPECT_EQ("", recorder.failures);
}

TEST(MCommandProcessor, LostAbortEventIsReported)
{
    const std::vector<HANDLE> before = ListHandles();
    Processor processor;
    for (HANDLE handle : ListHandles())
        if (std::find(before.begin(), before.end(), handle) == before.end())
            CloseHandle(handle);
    const char failure[] = "MCommandProcessor.IsAborted:ErrorAccessingEvent winErrorCode=6";
    EXPECT_EQ(failure, Raised([&] { processor.IsAborted(); }));
    EXPECT_EQ(failure, Execute(processor, nothing));
}

TEST(MCommandProcessor, WithoutMemoryToQueueItTheCommandIsDeletedAndTheProcessorWorks)
{
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::AnswersNull,
                                  AllocationFailure::ThrowsForGood}) {
        Processor processor;
        processor.Start();
        std::auto_ptr<MCommandSynchronous> command = NewCommand(nothing);
        const std::size_t handles = ListHandles().size();

        FailingAllocation failing(how, 1);
        const ShortageOutcome outcome =
            RunShortOfMemory([&] { processor.ExecuteSynchronously(command); });
        failing.Disarm();

        EXPECT_EQ(how == AllocationFailure::ThrowsForGood ? ShortageOutcome::RaisedBadAlloc
                                                          : ShortageOutcome::RaisedMException,
                  outcome);
        EXPECT_EQ(handles + 1, ListHandles().size()); // the completion event stays open
        EXPECT_EQ("", Execute(processor, nothing));
    }
}

TEST(MCommandProcessor, WithoutMemoryToBuildItNothingStaysBehind)
{
    const auto build = [] { MCommandProcessor(nullptr, nullptr, nullptr, nullptr, 0); };
    build();
    const ExpectSameHandles handles;
    ForEachFailingAllocation(AllocationFailure::Throws, build, [](ShortageOutcome outcome) {
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome);
    });
}
