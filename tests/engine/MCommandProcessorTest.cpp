#include "engine/MCommandProcessor.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include <windows.h>

// That every command is deleted, whatever becomes of it, is seen by the check for leaks.

namespace
{

const Action nothing = [] {};

class Processor : public FailureRecorder, public MCommandProcessor
{
public:
    explicit Processor(std::uint32_t idleTimeoutMs = 0)
        : MCommandProcessor(this, FunctorFor([this] { onStart(); }).release(),
                            FunctorFor([this] { onStop(); }).release(),
                            FunctorFor([this] { onIdle(); }).release(), idleTimeoutMs)
    {
    }
    ~Processor() override { ForceStop(); }

    std::string Execute(const Action& action)
    {
        return Raised([&] { ExecuteSynchronously(NewCommand(action)); });
    }

    using MCommandProcessor::IsStopRequested;

    Action onStart = nothing;
    Action onStop = nothing;
    Action onIdle = nothing;
    Action onFlush = [this] { MCommandProcessor::OnFlush(); };

private:
    void OnFlush() override { onFlush(); }
};

} // namespace

TEST(MCommandProcessor, CopyOfTheWholeChainGoesIntoTheSlotAndTheThreadGoesOn)
{
    Processor processor;
    processor.Start();
    const MExceptionSlot slot = NewSlot();
    processor.ExecuteSynchronously(NewCommand(
        [] {
            MException chain(MError(L"cause"));
            chain.AddError(MError(L"Broken"));
            throw MException(chain);
        },
        slot));
    EXPECT_EQ(2u, slot->GetErrorCount());
    EXPECT_EQ("Broken", FailureText(*slot.Get()));
    EXPECT_EQ("", processor.Execute([] { Raise(L"nobody wants to know"); }));
}

TEST(MCommandProcessor, StoppedItRefusesForGood)
{
    Processor processor;
    processor.Start();
    EXPECT_FALSE(processor.IsAborted());
    for (int life = 0; life < 2; ++life) {
        processor.Stop();
        EXPECT_TRUE(processor.IsAborted());
        EXPECT_EQ("MCommandProcessor.ExecuteSynchronously:ProcessorStopped",
                  processor.Execute(nothing));
        processor.Start();
    }
}

TEST(MCommandProcessor, QueuedCommandsRunOnStopAndFlushAndAreDroppedWhenTheStopFails)
{
    const struct {
        bool isStop;
        Action onFlush; // in place of the processor's own
        std::string outcome;
    } cases[] = {{false, nullptr, ""},
                 {true, nullptr, ""},
                 {true, [] { Raise(L"dismissed"); },
                  "MCommandProcessor.ExecuteSynchronously:CommandProcessingAborted"}};
    for (const auto& example : cases) {
        Processor processor;
        if (example.onFlush)
            processor.onFlush = example.onFlush;
        processor.Start();
        Gate held, callersStart, go;
        std::atomic<int> ready{0}, executed{0};
        int executedAtEnd = 0;
        std::thread control([&] {
            held.Pass();
            while (ready < 3)
                Sleep(1);
            // A call opens its completion event just before it queues its command.
            const std::size_t handles = ListHandles().size();
            callersStart.Open();
            while (ListHandles().size() < handles + 3)
                Sleep(1);
            Sleep(30);
            std::thread releaser([&] {
                while (example.isStop && !processor.IsStopRequested())
                    Sleep(1);
                go.Open();
            });
            example.isStop ? processor.Stop() : processor.Flush();
            executedAtEnd = executed;
            releaser.join();
        });
        RunOnThreads(4, [&](int number) {
            if (number == 0) {
                EXPECT_EQ("", processor.Execute([&] {
                    held.Open();
                    go.Pass();
                }));
                return;
            }
            held.Pass();
            ++ready;
            callersStart.Pass();
            EXPECT_EQ(example.outcome, processor.Execute([&] { ++executed; }));
        });
        control.join();
        EXPECT_EQ(example.onFlush ? 0 : 3, executedAtEnd);
        EXPECT_EQ(example.isStop, processor.IsAborted());
        EXPECT_EQ("", processor.failures);
    }
}

TEST(MCommandProcessor, StopFunctorRunsOnceOnEveryWayOutAfterTheStart)
{
    const struct {
        bool startFails;
        bool flushFails;
        std::string calls;
        std::string failures;
    } cases[] = {{false, false, "start flush flush stop", "TooLate;"},
                 {false, true, "start flush stop", "Clogged;"},
                 {true, false, "start ", "NoSetup;"}};
    for (const auto& example : cases) {
        Processor processor;
        std::string calls;
        processor.onStart = [&] {
            calls += "start ";
            if (example.startFails)
                Raise(L"NoSetup");
        };
        processor.onFlush = [&] {
            calls += "flush ";
            if (example.flushFails)
                Raise(L"Clogged");
        };
        processor.onStop = [&] {
            calls += "stop";
            Raise(L"TooLate");
        };
        EXPECT_EQ(example.startFails ? "MEngineThread.Start:ThreadExitedUnexpectedly" : "",
                  Raised([&] { processor.Start(); }));
        EXPECT_EQ(example.flushFails ? "MEngineThread.Flush:ThreadExitedUnexpectedly" : "",
                  Raised([&] { processor.Flush(); }));
        processor.Stop();
        EXPECT_EQ(example.calls, calls);
        EXPECT_EQ(example.failures, processor.failures);
    }
}

TEST(MCommandProcessor, IdleFunctorRunsAfterEachTimeOutAndMayFail)
{
    for (std::uint32_t timeoutMs : {0, 5}) {
        std::atomic<int> idles{0};
        Processor processor(timeoutMs);
        processor.onIdle = [&] {
            ++idles;
            Raise(L"dismissed");
        };
        processor.Start();
        Sleep(30);
        while (timeoutMs && idles < 3)
            Sleep(1);
        EXPECT_EQ("", processor.Execute(nothing));
        EXPECT_EQ(timeoutMs != 0, idles != 0);
        EXPECT_EQ("", processor.failures);
    }
}

TEST(MCommandProcessor, LostAbortEventIsReported)
{
    const std::vector<HANDLE> before = ListHandles();
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    for (HANDLE handle : ListHandles())
        if (std::find(before.begin(), before.end(), handle) == before.end())
            CloseHandle(handle);
    EXPECT_EQ("MCommandProcessor.IsAborted:ErrorAccessingEvent winErrorCode=6",
              Raised([&] { processor.ExecuteSynchronously(NewCommand(nothing)); }));
}

TEST(MCommandProcessor, WithoutMemoryToQueueItTheCommandIsDeletedAndTheProcessorWorks)
{
    for (AllocationFailure how : allocationFailures) {
        Processor processor;
        processor.Start();
        std::auto_ptr<MCommandSynchronous> command = NewCommand(nothing);
        const std::size_t handles = ListHandles().size();
        ExpectOutOfMemory(how, [&] { processor.ExecuteSynchronously(command); });
        EXPECT_EQ(handles + 1, ListHandles().size()); // the completion event stays open
        EXPECT_EQ("", processor.Execute(nothing));
    }
}

TEST(MCommandProcessor, WithoutMemoryToBuildItNothingStaysBehind)
{
    ExpectUnwoundWithoutMemory([] { MCommandProcessor(nullptr, nullptr, nullptr, nullptr, 0); });
}
