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

struct SchedulerThread : FailureRecorder, MSchedulerThread {
    SchedulerThread() : MSchedulerThread(this) {}

    void OnSpontaneousError(const MException& exception) override
    {
        apartmentAfter = Apartment();
        FailureRecorder::OnSpontaneousError(exception);
    }
    void ThreadFunction() override
    {
        MSchedulerThread::ThreadFunction();
        apartmentAfter = Apartment();
    }

    int apartmentAfter = APTTYPE_CURRENT;
};

} // namespace

TEST(MSchedulerThread, FunctorsRunInTheMultithreadedApartmentWhichEveryWayOutLeaves)
{
    for (bool fails : {false, true}) {
        SchedulerThread thread;
        int apartment = -1;
        Gate served;
        const PlatformEvent event(EventReset::Automatic);
        const auto action = [&] {
            apartment = Apartment();
            served.Open();
            if (fails)
                Raise("Unexpected");
        };
        thread.RegisterSchedulerEvent(event, FunctorFor(action).release());
        thread.Start();
        SetEvent(event);
        (fails ? thread.failed : served).Pass();
        EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
                  Raised([&] { thread.RegisterSchedulerEvent(event, nullptr); }));
        thread.Stop();
        EXPECT_EQ(APTTYPE_MTA, apartment);
        EXPECT_EQ(-1, thread.apartmentAfter);
        EXPECT_EQ(fails ? "Unexpected;" : "", thread.failures);
    }
    MSchedulerThread running(nullptr); // stops itself
    running.Start();
}
