#include "engine/MDesyncEventScheduler.h"

#include "tests/engine/EngineFixtures.h"

// That fired events are freed is seen by the check for leaks.

TEST(MDesyncEventScheduler, EventsWaitForEnableKeepTheirOrderPassAFailureAndAreWaitedFor)
{
    std::string diary;
    const auto writing = [&](char letter) {
        return NewEvent([&diary, letter] { diary += letter; });
    };
    MDesyncEvent* const dropped = writing('x');
    {
        MDesyncEventScheduler disabled(nullptr), scheduler(nullptr);
        disabled.ScheduleDesyncEvent(dropped);
        scheduler.Disable();
        for (const std::string before : {"", "ab", "abab"}) {
            Gate firing;
            scheduler.ScheduleDesyncEvent(writing('a'));
            scheduler.ScheduleDesyncEvent(NewEvent([&] {
                firing.Open();
                Sleep(20);
                Raise("dismissed");
            }));
            scheduler.ScheduleDesyncEvent(writing('b'));
            EXPECT_EQ(before, diary);
            scheduler.Enable();
            firing.Pass();
            if (before != "abab") // the last time it is destroyed instead
                scheduler.Disable();
        }
    }
    dropped->Fire();
    EXPECT_EQ("abababx", diary);
    ::operator delete(dropped);
}

TEST(MDesyncEventScheduler, WithoutMemoryTheEventStaysTheCallers)
{
    MDesyncEventScheduler scheduler(nullptr);
    MDesyncEvent* const event = NewEvent([] {});
    const auto schedule = [&] { scheduler.ScheduleDesyncEvent(event); };
    EXPECT_EQ(ShortageOutcome::RaisedMException,
              RunShortOfMemory(AllocationFailure::Throws, 1, schedule));
    ::operator delete(event);
}
