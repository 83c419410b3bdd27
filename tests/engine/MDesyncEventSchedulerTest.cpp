#include "engine/MDesyncEventScheduler.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

// That fired events are freed is seen by the check for leaks.

namespace
{

/// Actions that write down their order; `Await` holds up the test until the last one has run.
class Diary
{
public:
    Action Entry(const std::string& text)
    {
        return [this, text] { entries += text; };
    }

    const Action last = [this] { end.Open(); };

    std::string Await()
    {
        end.Pass();
        return entries;
    }

    std::string entries;

private:
    Gate end;
};

} // namespace

TEST(MDesyncEventScheduler, EventsWaitForEnableAndAreFiredInOrder)
{
    Diary diary;
    const Action one = diary.Entry("1");
    const Action two = diary.Entry("2");
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Disable();
    scheduler.ScheduleDesyncEvent(NewEvent(one));
    scheduler.ScheduleDesyncEvent(NewEvent(two));
    scheduler.ScheduleDesyncEvent(NewEvent(diary.last));
    EXPECT_EQ("", diary.entries);
    scheduler.Enable();
    EXPECT_EQ("12", diary.Await());
    EXPECT_EQ("MEngineThread.Start:AlreadyRunning", Raised([&] { scheduler.Enable(); }));
}

TEST(MDesyncEventScheduler, EventThatFailsHoldsUpNobody)
{
    Diary diary;
    const Action one = diary.Entry("1");
    const Action three = diary.Entry("3");
    const Action fails = [] { Raise(L"dismissed"); };
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Enable();
    for (const Action* action : {&one, &fails, &three, &diary.last})
        scheduler.ScheduleDesyncEvent(NewEvent(*action));
    EXPECT_EQ("13", diary.Await());
}

TEST(MDesyncEventScheduler, DisableWaitsForTheBurstAndTheNextEnableTakesUpTheRest)
{
    Diary diary;
    Gate fired;
    const Action one = [&] {
        fired.Open();
        diary.entries += "1";
    };
    const Action two = diary.Entry("2");
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Enable();
    scheduler.ScheduleDesyncEvent(NewEvent(one));
    fired.Pass();
    scheduler.Disable();
    EXPECT_EQ("1", diary.entries);
    scheduler.ScheduleDesyncEvent(NewEvent(two));
    scheduler.ScheduleDesyncEvent(NewEvent(diary.last));
    scheduler.Enable();
    EXPECT_EQ("12", diary.Await());
}

TEST(MDesyncEventScheduler, DisableFromAnEventIsDismissedAndDeliveryGoesOn)
{
    Diary diary;
    std::string failure;
    MDesyncEventScheduler scheduler(nullptr);
    const Action disable = [&] {
        failure = Raised([&] { scheduler.Disable(); });
        scheduler.Disable();
    };
    scheduler.Enable();
    scheduler.ScheduleDesyncEvent(NewEvent(disable));
    scheduler.ScheduleDesyncEvent(NewEvent(diary.last));
    diary.Await();
    EXPECT_EQ("MEngineThread.Flush:CannotFlushSelf", failure);
}

TEST(MDesyncEventScheduler, DestroyedItDropsWhatIsQueuedWithoutFreeingIt)
{
    Diary diary;
    const Action never = diary.Entry("never");
    MDesyncEvent* const event = NewEvent(never);
    {
        MDesyncEventScheduler scheduler(nullptr);
        scheduler.ScheduleDesyncEvent(event);
    }
    EXPECT_EQ("", diary.entries);
    event->Fire();
    ::operator delete(event);
    MDesyncEventScheduler enabled(nullptr);
    enabled.Enable();
}

TEST(MDesyncEventScheduler, WithoutMemoryTheEventStaysTheCallers)
{
    const Action nothing = [] {};
    MDesyncEventScheduler scheduler(nullptr);
    MDesyncEvent* const event = NewEvent(nothing);
    FailingAllocation failing(AllocationFailure::Throws, 1);
    const ShortageOutcome outcome = RunShortOfMemory([&] { scheduler.ScheduleDesyncEvent(event); });
    failing.Disarm();
    EXPECT_EQ(ShortageOutcome::RaisedMException, outcome);
    ::operator delete(event);

    const auto build = [] { MDesyncEventScheduler unfinished(nullptr); };
    build();
    const ExpectSameHandles handles;
    ForEachFailingAllocation(AllocationFailure::Throws, build, [](ShortageOutcome ended) {
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, ended);
    });
}
