#include "engine/MDesyncEventScheduler.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

// That fired events are freed is seen by the check for leaks.

namespace
{

/// Events that write down their order; `Await` holds up the test until the last one has been fired.
class Diary
{
public:
    MDesyncEvent* Entry(char mark)
    {
        return NewEvent([this, mark] { entries += mark; });
    }

    MDesyncEvent* Last()
    {
        return NewEvent([this] { end.Open(); });
    }

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

TEST(MDesyncEventScheduler, EventsWaitForEnableAndAreFiredInOrderPastOneThatFails)
{
    Diary diary;
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Disable();
    MDesyncEvent* const failing = NewEvent([] { Raise(L"dismissed"); });
    for (MDesyncEvent* event : {diary.Entry('1'), failing, diary.Entry('3'), diary.Last()})
        scheduler.ScheduleDesyncEvent(event);
    EXPECT_EQ("", diary.entries);
    scheduler.Enable();
    EXPECT_EQ("13", diary.Await());
}

TEST(MDesyncEventScheduler, DisableWaitsForTheBurstAndTheNextEnableTakesUpTheRest)
{
    Diary diary;
    Gate fired;
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Enable();
    scheduler.ScheduleDesyncEvent(NewEvent([&] {
        fired.Open();
        diary.entries += "1";
    }));
    fired.Pass();
    scheduler.Disable();
    EXPECT_EQ("1", diary.entries);
    scheduler.ScheduleDesyncEvent(diary.Entry('2'));
    scheduler.ScheduleDesyncEvent(diary.Last());
    scheduler.Enable();
    EXPECT_EQ("12", diary.Await());
}

TEST(MDesyncEventScheduler, DisableFromAnEventIsDismissedAndDeliveryGoesOn)
{
    Diary diary;
    std::string failure;
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Enable();
    scheduler.ScheduleDesyncEvent(NewEvent([&] {
        failure = Raised([&] { scheduler.Disable(); });
        scheduler.Disable();
    }));
    scheduler.ScheduleDesyncEvent(diary.Last());
    diary.Await();
    EXPECT_EQ("MEngineThread.Flush:CannotFlushSelf", failure);
}

TEST(MDesyncEventScheduler, DestroyedItDropsWhatIsQueuedWithoutFreeingIt)
{
    Diary diary;
    MDesyncEvent* const event = diary.Entry('1');
    {
        MDesyncEventScheduler enabled(nullptr);
        enabled.Enable();
        MDesyncEventScheduler disabled(nullptr);
        disabled.ScheduleDesyncEvent(event);
    }
    EXPECT_EQ("", diary.entries);
    event->Fire();
    ::operator delete(event);
}

TEST(MDesyncEventScheduler, WithoutMemoryTheEventStaysTheCallers)
{
    MDesyncEventScheduler scheduler(nullptr);
    MDesyncEvent* const event = NewEvent([] {});
    ExpectOutOfMemory(AllocationFailure::Throws, [&] { scheduler.ScheduleDesyncEvent(event); });
    ::operator delete(event);
    ExpectUnwoundWithoutMemory([] { MDesyncEventScheduler unfinished(nullptr); });
}
