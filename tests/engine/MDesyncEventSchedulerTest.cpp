#include "engine/MDesyncEventScheduler.h"

#include "tests/engine/EngineFixtures.h"

// That fired events are freed is seen by the check for leaks.

TEST(MDesyncEventScheduler, EventsWaitForEnableKeepTheirOrderPassAFailureAndRestAfterDisable)
{
    std::string diary;
    Gate fired, last;
    MDesyncEventScheduler scheduler(nullptr);
    scheduler.Disable();
    scheduler.ScheduleDesyncEvent(NewEvent([&] { diary += "1"; }));
    scheduler.ScheduleDesyncEvent(NewEvent([] { Raise("dismissed"); }));
    scheduler.ScheduleDesyncEvent(NewEvent([&] {
        fired.Open();
        diary += "2";
    }));
    EXPECT_EQ("", diary);
    scheduler.Enable();
    fired.Pass();
    scheduler.Disable();
    EXPECT_EQ("12", diary);

    scheduler.ScheduleDesyncEvent(NewEvent([&] {
        diary += "3";
        last.Open();
    }));
    EXPECT_EQ("12", diary);
    scheduler.Enable();
    last.Pass();
    EXPECT_EQ("123", diary);
}

TEST(MDesyncEventScheduler, DestroyedItWaitsForTheBurstAndLeavesAloneWhatIsQueued)
{
    std::string diary;
    Gate fired;
    FailureRecorder recorder;
    MDesyncEvent* const queued = NewEvent([&] { diary += "queued"; });
    {
        MDesyncEventScheduler disabled(nullptr);
        disabled.ScheduleDesyncEvent(queued);
        MDesyncEventScheduler enabled(&recorder);
        enabled.Enable();
        enabled.ScheduleDesyncEvent(NewEvent([&] {
            fired.Open();
            Sleep(20);
            diary += "burst ";
        }));
        fired.Pass();
    }
    queued->Fire();
    EXPECT_EQ("burst queued", diary);
    EXPECT_EQ("", recorder.failures);
    ::operator delete(queued);
}

TEST(MDesyncEventScheduler, WithoutMemoryTheEventStaysTheCallers)
{
    MDesyncEventScheduler scheduler(nullptr);
    MDesyncEvent* const event = NewEvent([] {});
    ExpectOutOfMemory(AllocationFailure::Throws, [&] { scheduler.ScheduleDesyncEvent(event); });
    ::operator delete(event);
    ExpectUnwoundWithoutMemory([] { MDesyncEventScheduler unfinished(nullptr); });
}
