#include "engine/MCommandProcessor.h"

#include "tests/engine/EngineFixtures.h"

#include <algorithm>

// That every command is deleted, whatever becomes of it, is seen by the check for leaks.

namespace
{

struct Processor : FailureRecorder, MCommandProcessor {
    explicit Processor(std::uint32_t idleTimeoutMs = 0)
        : MCommandProcessor(this, FunctorFor([this] { onStart(); }).release(),
                            FunctorFor([this] { onStop(); }).release(),
                            FunctorFor([this] { onIdle(); }).release(), idleTimeoutMs)
    {
    }
    ~Processor() override { ForceStop(); }

    void OnFlush() override { onFlush(); }
    using MCommandProcessor::IsStopRequested;
    using MCommandProcessor::IsThreadActive;

    std::string Execute(const Action& action)
    {
        return Raised([&] { ExecuteSynchronously(NewCommand(action)); });
    }

    Action onStart = [] {};
    Action onStop = [] {};
    Action onIdle = [] {};
    Action onFlush = [this] { MCommandProcessor::OnFlush(); };
};

} // namespace

TEST(MCommandProcessor, QueuedCommandsRunOnStopAndFlushAndAreDroppedWhenTheStopFails)
{
    const std::string call = "MCommandProcessor.ExecuteSynchronously:";
    for (const std::string ending : {"flush", "stop", "failing stop"}) {
        SCOPED_TRACE(ending);
        const bool fails = ending == "failing stop";
        const bool stops = ending != "flush";
        Processor processor;
        if (fails)
            processor.onFlush = [] { Raise("dismissed"); };
        processor.Start();
        Gate held, go;
        std::size_t handles = 0;
        std::atomic<int> ready{0}, executed{0};
        const Action hold = [&] {
            while (ready < 4)
                Sleep(1);
            handles = ListHandles().size();
            held.Open();
            go.Pass();
            Sleep(20); // until the flush is asked for; a stop can be seen
            while (stops && !processor.IsStopRequested())
                Sleep(1);
        };
        std::thread callers([&] {
            RunOnThreads(4, [&](int number) {
                ++ready;
                if (number > 0)
                    held.Pass();
                EXPECT_EQ(fails && number > 0 ? call + "CommandProcessingAborted" : "",
                          processor.Execute(number > 0 ? [&] { ++executed; } : hold));
            });
        });
        held.Pass();
        // A call opens its completion event just before it queues its command.
        while (ListHandles().size() < handles + 3)
            Sleep(1);
        Sleep(30);
        go.Open();
        stops ? processor.Stop() : processor.Flush();
        EXPECT_EQ(fails ? 0 : 3, executed);
        EXPECT_EQ(stops, processor.IsAborted());
        EXPECT_EQ("", processor.failures);
        callers.join();

        if (stops)
            processor.Start(); // which does not bring it back
        for (int again = 0; again < 2; ++again)
            EXPECT_EQ(stops ? call + "ProcessorStopped" : "", processor.Execute([] {}));
    }
}

TEST(MCommandProcessor, StopFunctorRunsOnceOnEveryWayOutAfterTheStart)
{
    const std::pair<std::string, const char*> cases[] = {
        {"start", " start"}, {"flush", " start flush stop"}, {"stop", " start flush flush stop"}};
    for (const auto& failing : cases) {
        Processor processor;
        std::string calls;
        const auto act = [&](const std::string& name) {
            calls += " " + name;
            if (name == failing.first || name == "stop")
                Raise(name);
        };
        processor.onStart = [&] { act("start"); };
        processor.onFlush = [&] { act("flush"); };
        processor.onStop = [&] { act("stop"); };
        const auto startAndFlush = [&] {
            processor.Start();
            processor.Flush();
        };
        EXPECT_EQ(failing.first != "stop", Raised(startAndFlush) != "");
        EXPECT_EQ(failing.first != "start", processor.IsThreadActive());
        processor.Stop();
        EXPECT_EQ(failing.second, calls);
        EXPECT_EQ(failing.first + ";", processor.failures);
    }
}

TEST(MCommandProcessor, FailureIsToldToNobodyWithoutAHandler)
{
    MCommandProcessor processor(nullptr, FunctorFor([] { Raise("any"); }).release(), nullptr,
                                nullptr, 0);
    EXPECT_EQ("MEngineThread.Start:ThreadExitedUnexpectedly", Raised([&] { processor.Start(); }));
}

TEST(MCommandProcessor, IdleFunctorRunsAfterEachTimeOutAndMayFail)
{
    Processor never(0), often(5);
    Gate thrice;
    int idles = 0;
    never.onIdle = [] { ADD_FAILURE(); };
    often.onIdle = [&] {
        if (++idles == 3)
            thrice.Open();
        Raise("dismissed");
    };
    never.Start();
    never.Execute([] {});
    often.Start();
    thrice.Pass();
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

TEST(MCommandProcessor, WithoutMemoryTheCommandIsDeletedAndTheProcessorWorks)
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
    ExpectUnwoundWithoutMemory([] { MCommandProcessor(nullptr, nullptr, nullptr, nullptr, 0); });
}
