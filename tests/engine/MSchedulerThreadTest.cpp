#include "engine/MSchedulerThread.h"

#include "tests/engine/EngineFixtures.h"

#include <objbase.h>

namespace
{

/// The apartment of the calling thread, -1 when it is in none.
int Apartment()
{
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier;
    return CoGetApartmentType(&type, &qualifier) == S_OK ? type : -1;
}

struct SchedulerThread : MSchedulerThread {
    SchedulerThread() : MSchedulerThread(nullptr) {}

    void ThreadFunction() override
    {
        failure = Raised([this] { MSchedulerThread::ThreadFunction(); });
        apartments.push_back(Apartment());
        Raise("told to nobody");
    }

    std::string failure;
    std::vector<int> apartments;
};

} // namespace

TEST(MSchedulerThread, FunctorsRunInTheMultithreadedApartmentWhichEveryWayOutLeaves)
{
    for (const std::string failure : {"", "Unexpected"}) {
        SchedulerThread thread;
        Gate served;
        const auto action = [&] {
            thread.apartments.push_back(Apartment());
            served.Open();
            if (failure != "")
                Raise(failure);
        };
        const PlatformEvent event(EventReset::Automatic);
        thread.RegisterSchedulerEvent(event, FunctorFor(action).release());
        thread.Start();
        SetEvent(event);
        served.Pass();
        EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
                  Raised([&] { thread.RegisterSchedulerEvent(event, nullptr); }));
        thread.Stop();
        EXPECT_EQ((std::vector<int>{APTTYPE_MTA, -1}), thread.apartments);
        EXPECT_EQ(failure, thread.failure);
    }
    MSchedulerThread running(nullptr); // stops itself
    running.Start();
}
