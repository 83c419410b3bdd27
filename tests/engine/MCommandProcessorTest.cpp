#include "engine/MCommandProcessor.h"

#include "tests/engine/EngineFixtures.h"

// That every command is deleted, whatever becomes of it, is seen by the check for leaks.

namespace
{

struct Processor : Script, MCommandProcessor {
    explicit Processor(std::uint32_t idleTimeoutMs = 0)
        : MCommandProcessor(this, Calling("start"), Calling("stop"), Calling("idle"), idleTimeoutMs)
    {
    }
    ~Processor() override { ForceStop(); }

    MCallbackFunctor* Calling(const char* name)
    {
        return FunctorFor([this, name] { Call(name); }).release();
    }
    void OnFlush() override
    {
        Call("flush");
        MCommandProcessor::OnFlush();
        flushed();
    }
    std::string Execute(const Action& action)
    {
        return Raised([&] { ExecuteSynchronously(NewCommand(action)); });
    }
    using MCommandProcessor::IsStopRequested;

    Action flushed = [] {};
};

const std::string call = "MCommandProcessor.ExecuteSynchronously:";

} // namespace

// Callers that go on calling never let the queue become empty by themselves; they give up to let a
// failing test end.
TEST(MCommandProcessor, FlushAndStopExecuteWhatIsQueuedAndNoMoreAndAFailingStopDropsIt)
{
    for (const std::string ending : {"flush", "stop", "failing stop"}) {
        const bool fails = ending == "failing stop";
        Processor processor;
        Gate held, go;
        std::size_t handles = 0;
        std::atomic<int> executed{0};
        int inFlush = 0;
        processor.flushed = [&] { inFlush = executed; };
        if (fails)
            processor.on["flush"] = [] { Raise("dismissed"); };
        const Action hold = [&] {
            handles = varek::CountOpenHandles();
            held.Open();
            go.Pass();
        };
        processor.Start();
        std::thread callers([&] {
            RunOnThreads(4, [&](int number) {
                const auto count = [&] {
                    return processor.Execute([&] { Sleep(++executed < 4); });
                };
                if (number > 0)
                    held.Pass();
                EXPECT_EQ(fails && number > 0 ? call + "CommandProcessingAborted" : "",
                          number > 0 ? count() : processor.Execute(hold));
                while (number > 0 && executed < 1000 && count() == "")
                    continue;
            });
        });
        held.Pass();
        // A call opens its completion event just before it queues its command.
        for (int waits = 0; varek::CountOpenHandles() < handles + 3 && waits < 1000; ++waits)
            Sleep(1);
        Sleep(30);
        const Action letGo = [&] { go.Open(); }; // once the request is made
        DoAheadOfNext(ending == "flush" ? "WaitForMultipleObjects" : "WaitForSingleObject", letGo);
        ending == "flush" ? processor.Flush() : processor.Stop();
        EXPECT_EQ(fails ? 0 : 3, inFlush);
        processor.Stop();
        callers.join();
        EXPECT_EQ("", processor.failures);
        EXPECT_EQ(call + "ProcessorStopped", processor.Execute([] {}));
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
    // Woken for a command that is gone by then, it goes on.
    often.on["start"] = [] { FailNext("WaitForMultipleObjects", WAIT_OBJECT_0 + 2); };
    never.Start();
    often.Start();
    thrice.Pass();
    often.Stop();
    EXPECT_EQ("start idle idle idle flush stop ", often.calls);
}

TEST(MCommandProcessor, CommandThatComesTooLateIsNotEvenExecutedAfterANewStart)
{
    Processor processor;
    const auto alive = std::make_shared<int>();
    const Action queue = [&] {
        const auto command = NewCommand([alive] { ADD_FAILURE(); }).release();
        EXPECT_TRUE(processor.Queue(std::unique_ptr<MCommand>(command)));
    };
    processor.flushed = [&] { DoAheadOfNext("SetEvent", queue); }; // that of the abort
    processor.Start();
    // Between the question whether the processor is stopped and the queue.
    const Action ahead = [&] {
        processor.Stop();
        processor.flushed = [] {};
        EXPECT_EQ(1, alive.use_count());
    };
    DoAheadOfNext("CreateEventW", ahead);
    EXPECT_EQ(call + "CommandProcessingAborted", processor.Execute([] { ADD_FAILURE(); }));
    processor.Start();
    processor.Flush();
}

TEST(MCommandProcessor, WithoutMemoryTheCommandIsDeletedAndTheProcessorWorks)
{
    Processor processor;
    processor.Start();
    std::auto_ptr<MCommandSynchronous> command = NewCommand([] {});
    const std::size_t handles = varek::CountOpenHandles();
    EXPECT_EQ(ShortageOutcome::RaisedMException,
              RunShortOfMemory(AllocationFailure::Throws, 1,
                               [&] { processor.ExecuteSynchronously(command); }));
    EXPECT_EQ(handles + 1, varek::CountOpenHandles()); // the completion event stays open
    EXPECT_EQ("", processor.Execute([] { Raise("nobody wants to know"); }));
}
