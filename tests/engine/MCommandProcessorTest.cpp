#include "engine/MCommandProcessor.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/engine/Imports.h"

// That every command is deleted, whatever becomes of it, is seen by the check for leaks.

namespace
{

struct Processor : Script, MCommandProcessor {
    explicit Processor(std::uint32_t idleTimeoutMs = 0)
        : MCommandProcessor(this, FunctorFor([this] { Call("start"); }).release(),
                            FunctorFor([this] { Call("stop"); }).release(),
                            FunctorFor([this] { Call("idle"); }).release(), idleTimeoutMs)
    {
    }
    ~Processor() override { ForceStop(); }

    void OnFlush() override
    {
        Call("flush");
        MCommandProcessor::OnFlush();
    }
    std::string Execute(const Action& action)
    {
        return Raised([&] { ExecuteSynchronously(NewCommand(action)); });
    }
    using MCommandProcessor::IsStopRequested;
};

} // namespace

TEST(MCommandProcessor, QueuedCommandsRunOnStopAndFlushAndAreDroppedWhenTheStopFails)
{
    const std::string call = "MCommandProcessor.ExecuteSynchronously:";
    for (const std::string ending : {"flush", "stop", "failing stop"}) {
        const bool fails = ending == "failing stop";
        Processor processor;
        if (fails)
            processor.on["flush"] = [] { Raise("dismissed"); };
        processor.Start();
        Gate held, go;
        std::atomic<int> executed{0};
        std::size_t handles = 0;
        const Action hold = [&] {
            handles = ListHandles().size();
            held.Open();
            go.Pass();
            while (ending != "flush" && !processor.IsStopRequested())
                Sleep(1);
            Sleep(20); // until the flush is asked for
        };
        const Action count = [&] { ++executed; };
        std::thread callers([&] {
            RunOnThreads(4, [&](int number) {
                if (number > 0)
                    held.Pass();
                EXPECT_EQ(fails && number > 0 ? call + "CommandProcessingAborted" : "",
                          processor.Execute(number > 0 ? count : hold));
            });
        });
        held.Pass();
        // A call opens its completion event just before it queues its command.
        while (ListHandles().size() < handles + 3)
            Sleep(1);
        Sleep(30);
        go.Open();
        ending == "flush" ? processor.Flush() : processor.Stop();
        EXPECT_EQ(fails ? 0 : 3, executed);
        callers.join();
        EXPECT_EQ("", processor.failures);
        EXPECT_EQ(ending == "flush" ? "" : call + "ProcessorStopped", processor.Execute([] {}));
    }
}

TEST(MCommandProcessor, StopFunctorRunsOnceOnEveryWayOutAfterTheStart)
{
    const std::pair<std::string, const char*> cases[] = {
        {"start", "start "}, {"flush", "start flush stop "}, {"stop", "start flush flush stop "}};
    for (const auto& failing : cases) {
        Processor processor;
        processor.on["stop"] = [] { Raise("stop"); };
        processor.on[failing.first] = [&] { Raise(failing.first); };
        EXPECT_EQ(failing.first == "start", Raised([&] { processor.Start(); }) != "");
        EXPECT_EQ(failing.first == "flush", Raised([&] { processor.Flush(); }) != "");
        processor.Stop();
        EXPECT_EQ(failing.second, processor.calls);
        EXPECT_EQ(failing.first + ";", processor.failures);
    }
}

TEST(MCommandProcessor, IdleFunctorRunsAfterEachTimeOutMayFailAndBeInterruptedByAStop)
{
    Processor never, often(5);
    Gate thrice;
    never.on["idle"] = [] { ADD_FAILURE(); };
    often.on["idle"] = [&] {
        if (often.calls != "start idle idle idle ")
            Raise("dismissed");
        thrice.Open();
        while (!often.IsStopRequested())
            Sleep(1);
    };
    never.Start();
    often.Start();
    thrice.Pass();
    often.Stop();
    EXPECT_EQ("start idle idle idle flush stop ", often.calls);
}

TEST(MCommandProcessor, CommandThatComesTooLateIsNotEvenExecutedAfterANewStart)
{
    Processor processor;
    processor.Start();
    // Between the question whether the processor is stopped and the queue.
    const Action ahead = [&] { processor.Stop(); };
    DoAheadOfNext(Import::CreateEvent, ahead);
    EXPECT_EQ("MCommandProcessor.ExecuteSynchronously:CommandProcessingAborted",
              processor.Execute([] { ADD_FAILURE(); }));
    processor.Start();
    processor.Flush();
}

// Two callers never let the queue become empty by themselves; they give up to let a failing test
// end.
TEST(MCommandProcessor, FlushAndStopEndUnderSteadyCallers)
{
    Processor processor;
    processor.Start();
    std::atomic<int> executed{0};
    std::thread callers([&] {
        RunOnThreads(2, [&](int) {
            const Action command = [&] {
                ++executed;
                Sleep(2);
            };
            while (executed < 1000 && processor.Execute(command) == "")
                continue;
        });
    });
    const auto bounded = [&](void (MEngineThread::*wait)()) {
        while (executed < 10)
            Sleep(1);
        const int before = executed;
        (processor.*wait)();
        EXPECT_GE(before + 4, executed);
    };
    bounded(&MEngineThread::Flush);
    bounded(&MEngineThread::Flush);
    bounded(&MEngineThread::Stop);
    callers.join();
}

TEST(MCommandProcessor, WithoutMemoryTheCommandIsDeletedAndTheProcessorWorks)
{
    Processor processor;
    processor.Start();
    std::auto_ptr<MCommandSynchronous> command = NewCommand([] {});
    const std::size_t handles = ListHandles().size();
    EXPECT_EQ(ShortageOutcome::RaisedMException,
              RunShortOfMemory(AllocationFailure::Throws, 1,
                               [&] { processor.ExecuteSynchronously(command); }));
    EXPECT_EQ(handles + 1, ListHandles().size()); // the completion event stays open
    EXPECT_EQ("", processor.Execute([] { Raise("nobody wants to know"); }));
}
