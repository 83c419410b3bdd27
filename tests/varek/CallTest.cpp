// Calls, under stops, deaths and failing memory. That nothing leaks is seen by the check for leaks.

#include "varek/Call.h"
#include "tests/varek/Calls.h"

#include <stdexcept>

namespace
{

using std::chrono::milliseconds;

/// Ends the thread once the gate is open.
struct Deadly : MCommand {
    explicit Deadly(Gate& gate) : gate(gate) {}
    void ExecuteGenericCommand() override { gate.Pass(), Raise("deadly"); }
    Gate& gate;
};

} // namespace

TEST(Call, GivesBackWhatTheFunctionDoes)
{
    StartedProcessor processor;
    auto counting = [count = 0]() mutable { return ++count; };
    varek::Call(processor, counting);
    EXPECT_EQ(2, varek::Call(processor, counting)); // it is not copied
    EXPECT_EQ(&processor, &varek::Call(
                              processor, [&]() -> auto& { return processor; }));
    EXPECT_EQ(3, *varek::Call(processor, [] { return std::make_unique<int>(3); }));
    auto moving = [p = std::make_unique<int>(4)]() mutable { return std::move(p); };
    EXPECT_EQ(4, *varek::CallAsync(processor, std::move(moving)).get());
}

TEST(Call, EveryWayOfCallingRaisesTheSame)
{
    StartedProcessor processor;
    const std::pair<std::string, Action> failures[] = {
        {"", [&] { EXPECT_TRUE(processor.IsCurrentThread()); }},
        {"Pump:Dry", [] { Raise("Pump:Dry"); }},
        {"varek.Call:StandardException type=St13runtime_error what=odd",
         [] { throw std::runtime_error("odd"); }},
        {"varek.Call:OwnThread", [&] { CallBy(0, processor, [] {}); }},
        {"varek.Call:OwnThread", [&] { CallBy(1, processor, [] {}); }}};
    for (const auto& failure : failures)
        for (int way : {0, 1, 2})
            EXPECT_EQ(failure.first, Raised([&] { CallBy(way, processor, failure.second); }));

    varek::CancelToken token;
    token.Cancel();
    const Action never = [] { ADD_FAILURE(); };
    const auto late = [&] { varek::CallAsync(processor, never, token).get(); };
    EXPECT_EQ("varek.Call:Cancelled", Raised([&] { varek::Call(processor, never, token); }));
    EXPECT_EQ("varek.Call:Cancelled", Raised(late));
    processor.Stop();
    EXPECT_EQ("varek.Call:ProcessorStopped", Raised([&] { CallBy(0, processor, never); }));
    EXPECT_EQ("varek.Call:CommandProcessingAborted", Raised([&] { CallBy(2, processor, never); }));
}

TEST(CallFor, GivesUpWaitingAndLeavesTheFunctionAlone)
{
    Gate gate;
    const auto owned = std::make_shared<int>();
    StartedProcessor processor;
    const auto work = [owned, &gate] {
        gate.Pass();
        return ++*owned == 1 ? throw std::runtime_error("to nobody") : *owned;
    };
    for (const int wait : {10, -1})
        EXPECT_EQ("varek.Call:TimedOut",
                  Raised([&] { varek::CallFor(milliseconds(wait), processor, work); }));
    gate.Open();
    varek::Call(processor, [] {});
    EXPECT_EQ(2, *owned);
    processor.Stop();
    EXPECT_EQ(2, owned.use_count()); // here, and in the work
}

TEST(Call, AThreadThatHasDiedIsAnErrorToAllButThoseWhoWaitByHandForTheNext)
{
    const std::string dead = "varek.Call:ThreadExitedUnexpectedly";
    Gate gate;
    std::atomic<int> ran{0};
    const Action count = [&] { ++ran; };
    std::future<void> never;
    {
        StartedProcessor processor;
        processor.Queue(std::unique_ptr<MCommand>(new Deadly(gate)));
        std::thread byHand([&] { processor.ExecuteSynchronously(NewCommand(count)); });
        std::future<void> early = varek::CallAsync(processor, count);
        std::thread opener([&] { Sleep(30), gate.Open(); });
        EXPECT_EQ(dead, Raised([&] { varek::Call(processor, count); })); // it waited
        EXPECT_EQ(dead, Raised([&] { early.get(); }));
        opener.join();
        for (int way : {0, 1, 2, 2})
            EXPECT_EQ(dead, Raised([&] { CallBy(way, processor, count); }));
        processor.Stop();
        EXPECT_EQ(dead, Raised([&] { varek::Call(processor, count); }));
        processor.Start();
        byHand.join();
        varek::Call(processor, count);
        EXPECT_EQ(2, ran);
        MCommandProcessor neverStarted(nullptr, nullptr, nullptr, nullptr, 0);
        never = varek::CallAsync(neverStarted, count);
    }
    EXPECT_EQ("varek.Call:CommandProcessingAborted", Raised([&] { never.get(); }));
}
