// The face without memory, where the system refuses, and in storms that meet a stop.

#include "tests/support/FailingCalls.h"
#include "tests/support/LeakCheck.h"
#include "tests/varek/Calls.h"
#include "tests/varek/FaceModule.h"
#include "tests/varek/LeavesNothing.h"
#include "varek/Testing.h"
#include "varek/Varek.h"

namespace
{

/// Does the work once, on a worker.
void RunOnWorker(const Action& work)
{
    Gate done;
    varek::Worker worker;
    worker.After(std::chrono::seconds(0), [&] { work(), done.Open(); });
    worker.Start();
    done.Pass();
}

const char createTimer[] = "CreateWaitableTimerW";
const char setTimer[] = "SetWaitableTimer";
const char findResource[] = "FindResourceW";

} // namespace

extern "C" {
decltype(&CreateWaitableTimerW) __imp_CreateWaitableTimerW = CallOrFail<createTimer, 0>;
decltype(&SetWaitableTimer) __imp_SetWaitableTimer = CallOrFail<setTimer, FALSE>;
decltype(&FindResourceW) __imp_FindResourceW = CallOrFail<findResource, 0>;
}

TEST(Refusal, IsRaisedInWordsAndNothingRunsForIt)
{
    LeakCheck::Skip(); // names
    Gate gate;
    StartedProcessor processor;
    varek::Worker worker;
    const Action never = [] { ADD_FAILURE(); };
    const Action call = [&] { varek::CallFor(std::chrono::milliseconds(1), processor, never); };
    const Action name = [&] { worker.Every(std::chrono::hours(1), never); };
    const auto refuse = [](const char* what, DWORD error, const Action& action, const char* told) {
        FailNext(what, error);
        EXPECT_NE(std::string::npos, Raised(action).find(told)) << told;
    };
    name();
    EXPECT_EQ("varek.Worker:IntervalTooLong milliseconds=2147483648",
              Raised([&] { worker.Every(std::chrono::milliseconds(2147483648), never); }));
    std::future<void> busy = varek::CallAsync(processor, [&] { gate.Pass(); });
    refuse("CreateEventW", 5, call, "varek.Call:WaitFailed winErrorCode=5");
    refuse("WaitForMultipleObjects", WAIT_FAILED, call, "varek.Call:WaitFailed winErrorCode=42");
    refuse("WaitForMultipleObjects", 1, call, "varek.Call:ThreadExitedUnexpectedly");
    refuse(
        "WaitForSingleObject", WAIT_FAILED, [] { varek::AwaitEvents(); }, "Events:TimedOut");
    refuse(createTimer, 5, name, "varek.Worker:CannotMakeTimer winErrorCode=5");
    refuse(
        setTimer, 5, [&] { worker.Start(); }, "varek.Worker:CannotSetTimer winErrorCode=5");
    refuse(
        findResource, 5, [] { varek::Host(L"face-module.dll"); }, " moduleSdk= by ");
    gate.Open();
    processor.Stop();
    refuse("WaitForMultipleObjects", 1, call, "varek.Call:CommandProcessingAborted");
}

TEST(Shortage, WhateverIsDoneIsDoneOnceOrRaisedAndLeavesNothing)
{
    LeakCheck::Skip(); // the module stays
    std::atomic<int> ran{0};
    const Action work = [&] { ++ran; };
    const std::pair<std::string, Action> actions[] = {
        {"Call", [&] { varek::Call(work); }},
        {"CallFor", [&] { varek::CallFor(std::chrono::hours(1), work); }},
        {"CallAsync", [&] { varek::CallAsync(work, varek::CancelToken()).get(); }},
        {"Post", [&] { varek::Post(work); }},
        {"Worker", [&] { RunOnWorker(work); }},
        {"Watchdog", [&] { varek::Watchdog(std::chrono::hours(1), nullptr), work(); }},
        {"Host", [&] { varek::Host(L"face-module.dll"), work(); }},
    };
    for (const auto& each : actions) {
        SCOPED_TRACE(each.first);
        each.second();
        const auto shortage = [&] {
            varek::AwaitEvents();
            ran = 0;
            ForEachFailingAllocation(AllocationFailure::Throws, each.second,
                                     [&](ShortageOutcome outcome) {
                                         EXPECT_NE(ShortageOutcome::Completed, outcome);
                                         varek::AwaitEvents();
                                         EXPECT_EQ(0, ran);
                                     });
            varek::AwaitEvents();
            EXPECT_EQ(1, ran);
        };
        // The compiler's run time of a module leaves handles open.
        EXPECT_TRUE(LeavesNothing(shortage, each.first != "Host"));
    }
}

// Who calls gets a result or an error; what is posted runs or is destroyed unrun.
TEST(Storm, OfCallsAndEventsThroughAStopDoesEachOnceOrTellsSo)
{
    const auto storm = [] {
        std::atomic<int> ran{0}, answered{0}, refused{0}, fired{0};
        const auto owned = std::make_shared<int>();
        {
            StartedProcessor processor;
            MDesyncEventScheduler scheduler(nullptr);
            scheduler.Enable();
            RunOnThreads(4, [&](int number) {
                for (int i = 0; i < 50; ++i) {
                    if (number == 0 && i == 25)
                        processor.Stop(), scheduler.Disable();
                    varek::Post(scheduler, [&fired, owned] { ++fired; });
                    const auto call = [&] { CallBy(i % 3, processor, [&] { ++ran; }); };
                    ++(Raised(call) == "" ? answered : refused);
                }
            });
            EXPECT_EQ(answered, ran);
            EXPECT_EQ(200, answered + refused);
            EXPECT_GE(refused, 25);
            EXPECT_LE(26, owned.use_count());
            EXPECT_EQ(201, fired + owned.use_count());
        }
        EXPECT_EQ(1, owned.use_count());
    };
    EXPECT_TRUE(LeavesNothing(storm));
}

TEST(Storm, ThroughAShutdownEndsAndNothingRunsAfterIt)
{
    LeakCheck::Skip(); // names
    for (int storm = 0; storm < 3; ++storm) {
        const auto owned = std::make_shared<int>();
        const Action work = [owned] {};
        {
            LoadedFace face;
            face.Every(1, work);
            const Action steps[] = {[&] { face.Call(work); }, [&] { face.Post(work); },
                                    face.StartWorker, face.StopWorker, face.Watch};
            RunOnThreads(5, [&](int number) {
                for (int i = 0; i < 40; ++i)
                    Raised([&] { number + i == 20 ? face.Shutdown() : steps[(number + i) % 5](); });
            });
            EXPECT_NE("", Raised([&] { face.Call(work); }));
            EXPECT_NE("", Raised(face.StartWorker));
        }
        EXPECT_EQ(2, owned.use_count()); // here, and in the work
    }
}
