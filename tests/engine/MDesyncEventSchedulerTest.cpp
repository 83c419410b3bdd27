#include "engine/MDesyncEventScheduler.h"

#include "tests/engine/EngineFixtures.h"

#include <objbase.h>

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
        for (MDesyncEvent* const never : {dropped, static_cast<MDesyncEvent*>(nullptr)})
            disabled.ScheduleDesyncEvent(never);
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

// That its end leaves the apartment is seen by the module's deaths.
TEST(MSchedulerThread, CallsInTheMultithreadedApartmentWhatIsRegisteredBeforeItRuns)
{
    APTTYPE type = APTTYPE_CURRENT;
    const auto functor = [&] {
        APTTYPEQUALIFIER qualifier;
        CoGetApartmentType(&type, &qualifier);
        Raise("dies");
    };
    const PlatformEvent event(EventReset::Automatic);
    MSchedulerThread thread(nullptr); // stops itself
    thread.RegisterSchedulerEvent(event, FunctorFor(functor).release());
    thread.Start();
    for (const bool dies : {false, true}) {
        if (dies)
            SetEvent(event);
        while (thread.HasEnded() != dies)
            Sleep(1);
        EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
                  Raised([&] { thread.RegisterSchedulerEvent(event, nullptr); }));
    }
    EXPECT_EQ(APTTYPE_MTA, type);
}
