#include "engine/MDesyncEventScheduler.h"

#include "tests/engine/EngineFixtures.h"

// That fired events are freed is seen by the check for leaks.

namespace
{

struct EventDelivery : testing::Test {
    template <class Body>
    void Schedule(Body body)
    {
        scheduler.ScheduleDesyncEvent(NewEvent(body));
    }

    std::string diary;
    MDesyncEventScheduler scheduler{nullptr};
};

} // namespace

TEST_F(EventDelivery, WaitsForEnableKeepsTheOrderPassesAFailureAndIsOverAfterDisable)
{
    Gate fired, last;
    scheduler.Disable();
    Schedule([&] { diary += "1"; });
    Schedule([] { Raise("dismissed"); });
    Schedule([&] {
        fired.Open();
        diary += "2";
    });
    EXPECT_EQ("", diary);
    scheduler.Enable();
    fired.Pass();
    scheduler.Disable();
    EXPECT_EQ("12", diary);

    Schedule([&] { diary += "3"; });
    Schedule([&] { last.Open(); });
    scheduler.Enable();
    last.Pass();
    EXPECT_EQ("123", diary);
}

TEST_F(EventDelivery, DestroyedItDropsWhatIsQueuedWithoutFreeingIt)
{
    MDesyncEvent* const event = NewEvent([&] { diary += "1"; });
    {
        MDesyncEventScheduler disabled(nullptr);
        disabled.ScheduleDesyncEvent(event);
        scheduler.Enable(); // and destroyed so
    }
    EXPECT_EQ("", diary);
    event->Fire();
    ::operator delete(event);
}

TEST_F(EventDelivery, WithoutMemoryTheEventStaysTheCallers)
{
    MDesyncEvent* const event = NewEvent([] {});
    ExpectOutOfMemory(AllocationFailure::Throws, [&] { scheduler.ScheduleDesyncEvent(event); });
    ::operator delete(event);
    ExpectUnwoundWithoutMemory([] { MDesyncEventScheduler unfinished(nullptr); });
}
