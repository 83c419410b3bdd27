// What may meet at a command processor.

#include "explore/scenarios/Parts.h"
#include "varek/Call.h"

#include <windows.h>

namespace
{

void CallersShareAProcessor()
{
    Processor processor;
    processor.Start();
    int inside = 0;
    const auto alone = [&] {
        Expect(++inside == 1, "two commands at once");
        --inside;
    };
    Call here, there;
    {
        const Caller other([&] { there.Make(processor, alone); });
        here.Make(processor, alone);
    }
    Expect(here.IsDone() && there.IsDone(), "refused without a stop");
    processor.Stop();
}

void CommandFailsBesideAnother()
{
    Processor processor;
    processor.Start();
    const MExceptionSlot slot = NewSlot();
    Call call;
    {
        const Caller other([&] { call.Make(processor); });
        const Action failing = [] { Raise("fails"); };
        Expect(Failure([&] { processor.ExecuteSynchronously(NewCommand(failing, slot)); }).empty(),
               "the failure of a command came out of the call");
    }
    Expect(slot->GetErrorCount() == 1 && call.IsDone(), "a failure went elsewhere");
    processor.Stop();
}

void FlushWaitsForWhatWasQueued()
{
    Processor processor;
    processor.Start();
    Call before, beside;
    const Caller other([&] { beside.Make(processor); });
    before.Make(processor);
    processor.Flush();
    Expect(before.IsDone(), "not done after the flush");
}

void StopMeetsCallers()
{
    MayLoseBlocks(); // what is queued behind the abort
    Processor processor;
    processor.Start();
    Call first, second, other;
    {
        const Caller twice([&] {
            first.Make(processor);
            second.Make(processor);
        });
        const Caller once([&] { other.Make(processor); });
        processor.Stop();
    }
    Expect(first.IsDone() || !second.IsDone(), "done after a refusal");
    Call late;
    late.Make(processor);
    Expect(late.Answer() == "ProcessorStopped", "not refused after the stop");
}

void NothingRunsAfterAnAbort()
{
    MayLoseBlocks();
    Processor processor;
    processor.Start();
    Call call;
    const Caller caller([&] {
        call.Make(processor);
        call.Make(processor);
    });
    processor.Stop();
    processor.Start();
    processor.Flush();
    processor.Stop();
}

void StopMeetsStop()
{
    Processor processor;
    processor.Start();
    Call call;
    call.Make(processor);
    const Caller other([&] { processor.Stop(); });
    processor.Stop();
}

void StopMeetsFlush()
{
    Processor processor;
    processor.Start();
    const Caller other([&] { Expect(Failure([&] { processor.Flush(); }).empty(), "flush"); });
    processor.Stop();
}

void StartMeetsStart()
{
    Processor processor;
    std::string there;
    std::string here;
    {
        const Caller other([&] { there = Failure([&] { processor.Start(); }); });
        here = Failure([&] { processor.Start(); });
    }
    Expect(here + there == "AlreadyRunning", "not one of them has started it: " + here + there);
    processor.Stop();
}

void IdleMeetsStop()
{
    MayLoseBlocks();
    int idle = 0;
    Processor processor(FunctorFor([&idle] { ++idle; }), 10);
    processor.Start();
    Call call;
    const Caller caller([&] { call.Make(processor); });
    processor.Stop();
}

void CommandStopsItsProcessor()
{
    MayLoseBlocks();
    Processor processor;
    processor.Start();
    std::string told;
    {
        const Caller caller([&] {
            Call call;
            call.Make(processor, [&] { told = Failure([&] { processor.Stop(); }); });
        });
        processor.Stop();
    }
    Expect(told.empty() || told == "CannotStopSelf", "told " + told);
}

void DeathMeetsCalls()
{
    struct Deadly : MCommand {
        void ExecuteGenericCommand() override { Raise("deadly"); }
    };
    Processor processor;
    processor.Start();
    int ran = 0;
    const auto count = [&] { ++ran; };
    std::future<void> later;
    std::string waiting;
    {
        const Caller other([&] {
            later = varek::CallAsync(processor, count);
            waiting = Failure([&] { varek::Call(processor, count); });
        });
        processor.Queue(std::make_unique<Deadly>());
    }
    WaitForSingleObject(processor.GetEndedEvent(), INFINITE);
    Expect(later.wait_for(std::chrono::seconds(0)) == std::future_status::ready, "for ever later");
    const std::string told[] = {Failure([&] { later.get(); }), waiting};
    for (const std::string& answer : told)
        Expect(answer.empty() || answer == "ThreadExitedUnexpectedly", "told " + answer);
    Expect(ran == told[0].empty() + told[1].empty(), "ran " + std::to_string(ran) + " times");
}

} // namespace

std::vector<Scenario> ProcessorScenarios()
{
    return {
        {"CallersShareAProcessor", CallersShareAProcessor, false},
        {"CommandFailsBesideAnother", CommandFailsBesideAnother, false},
        {"FlushWaitsForWhatWasQueued", FlushWaitsForWhatWasQueued, false},
        {"StopMeetsCallers", StopMeetsCallers, false},
        {"NothingRunsAfterAnAbort", NothingRunsAfterAnAbort, false},
        {"StopMeetsStop", StopMeetsStop, false},
        {"StopMeetsFlush", StopMeetsFlush, false},
        {"StartMeetsStart", StartMeetsStart, false},
        {"IdleMeetsStop", IdleMeetsStop, false},
        {"CommandStopsItsProcessor", CommandStopsItsProcessor, false},
        {"DeathMeetsCalls", DeathMeetsCalls, false},
    };
}
