#include "engine/MCommandProcessor.h"

#include "tests/engine/EngineFixtures.h"

#include <algorithm>

// That every command is deleted, whatever becomes of it, is seen by the check for leaks.

namespace
{

const char aborted[] = "MCommandProcessor.ExecuteSynchronously:CommandProcessingAborted";

class Processor : public FailureRecorder, public MCommandProcessor
{
public:
    explicit Processor(std::uint32_t idleTimeoutMs = 0)
        : MCommandProcessor(this, FunctorFor([this] { onStart(); }).release(),
                            FunctorFor([this] { onStop(); }).release(),
                            FunctorFor([this] { Idle(); }).release(), idleTimeoutMs)
    {
    }
    ~Processor() override { ForceStop(); }

    std::string Execute(const Action& action)
    {
        return Raised([&] { ExecuteSynchronously(NewCommand(action)); });
    }

    using MCommandProcessor::IsStopRequested;
    using MCommandProcessor::IsThreadActive;

    Action onStart = [] {};
    Action onStop = [] {};
    Action onFlush = [this] { MCommandProcessor::OnFlush(); };
    std::atomic<int> idles{0};

private:
    void Idle()
    {
        ++idles;
        Raise("dismissed");
    }
    void OnFlush() override { onFlush(); }
};

} // namespace

TEST(MCommandProcessor, StoppedItRefusesForGood)
{
    Processor processor;
    processor.Start();
    for (int life = 0; life < 2; ++life) {
        processor.Stop();
        EXPECT_EQ("MCommandProcessor.ExecuteSynchronously:ProcessorStopped",
                  processor.Execute([] {}));
        processor.Start();
    }
}

TEST(MCommandProcessor, QueuedCommandsRunOnStopAndFlushAndAreDroppedWhenTheStopFails)
{
    for (const std::string ending : {"flush", "stop", "failing stop"}) {
        SCOPED_TRACE(ending);
        const bool fails = ending == "failing stop";
        const bool stops = ending != "flush";
        Processor processor;
        if (fails)
            processor.onFlush = [] { Raise("dismissed"); };
        processor.Start();
        Gate held, start, go;
        std::atomic<int> ready{0}, executed{0};
        std::thread holder([&] {
            processor.Execute([&] {
                held.Open();
                go.Pass();
                Sleep(20); // until the flush is asked for; a stop can be seen
                while (stops && !processor.IsStopRequested())
                    Sleep(1);
            });
        });
        held.Pass();
        std::thread callers([&] {
            RunOnThreads(3, [&](int) {
                ++ready;
                start.Pass();
                EXPECT_EQ(fails ? aborted : "", processor.Execute([&] { ++executed; }));
            });
        });
        while (ready < 3)
            Sleep(1);
        // A call opens its completion event just before it queues its command.
        const std::size_t handles = ListHandles().size();
        start.Open();
        while (ListHandles().size() < handles + 3)
            Sleep(1);
        Sleep(30);
        go.Open();
        stops ? processor.Stop() : processor.Flush();
        EXPECT_EQ(fails ? 0 : 3, executed);
        EXPECT_EQ(stops, processor.IsAborted());
        EXPECT_EQ("", processor.failures);
        holder.join();
        callers.join();
    }
}

TEST(MCommandProcessor, StopFunctorRunsOnceOnEveryWayOutAfterTheStart)
{
    const struct {
        std::string failing;
        const char* calls;
        const char* told; // the caller
    } cases[] = {{"start", " start", "MEngineThread.Start:ThreadExitedUnexpectedly"},
                 {"flush", " start flush stop", "MEngineThread.Flush:ThreadExitedUnexpectedly"},
                 {"stop", " start flush flush stop", ""}};
    for (const auto& example : cases) {
        Processor processor;
        std::string calls;
        const auto act = [&](const std::string& name) {
            calls += " " + name;
            if (name == example.failing || name == "stop")
                Raise(name);
        };
        processor.onStart = [&] { act("start"); };
        processor.onFlush = [&] { act("flush"); };
        processor.onStop = [&] { act("stop"); };
        const auto startAndFlush = [&] {
            processor.Start();
            processor.Flush();
        };
        EXPECT_EQ(example.told, Raised(startAndFlush));
        EXPECT_EQ(example.failing != "start", processor.IsThreadActive());
        processor.Stop();
        EXPECT_EQ(example.calls, calls);
        EXPECT_EQ(example.failing + ";", processor.failures);
    }
}

TEST(MCommandProcessor, IdleFunctorRunsAfterEachTimeOutAndMayFail)
{
    Processor never(0), often(5);
    never.Start();
    often.Start();
    while (often.idles < 3)
        Sleep(1);
    EXPECT_EQ(0, never.idles);
    often.Stop();
    EXPECT_EQ("", often.failures);
}

TEST(MCommandProcessor, LostAbortEventIsReported)
{
    const std::vector<HANDLE> before = ListHandles();
    Processor processor;
    for (HANDLE handle : ListHandles())
        if (std::find(before.begin(), before.end(), handle) == before.end())
            CloseHandle(handle);
    EXPECT_EQ("MCommandProcessor.IsAborted:ErrorAccessingEvent winErrorCode=6",
              processor.Execute([] {}));
}

TEST(MCommandProcessor, WithoutMemoryToQueueItTheCommandIsDeletedAndTheProcessorWorks)
{
    for (AllocationFailure how : {AllocationFailure::Throws, AllocationFailure::AnswersNull,
                                  AllocationFailure::ThrowsForGood}) {
        Processor processor;
        processor.Start();
        std::auto_ptr<MCommandSynchronous> command = NewCommand([] {});
        const std::size_t handles = ListHandles().size();
        ExpectOutOfMemory(how, [&] { processor.ExecuteSynchronously(command); });
        EXPECT_EQ(handles + 1, ListHandles().size()); // the completion event stays open
        EXPECT_EQ("", processor.Execute([] { Raise("nobody wants to know"); }));
        EXPECT_EQ("", processor.Execute([] {}));
    }
}

TEST(MCommandProcessor, WithoutMemoryToBuildItNothingStaysBehind)
{
    ExpectUnwoundWithoutMemory([] { MCommandProcessor(nullptr, nullptr, nullptr, nullptr, 0); });
}
