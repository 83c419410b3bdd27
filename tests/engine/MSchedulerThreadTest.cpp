#include "engine/MSchedulerThread.h"

#include "tests/engine/EngineFixtures.h"

#include <objbase.h>

// That a thread that fails leaves COM too is seen by the module's deaths.
TEST(MSchedulerThread, FunctorsRunInTheMultithreadedApartmentWhichItsEndLeaves)
{
    struct Thread : MSchedulerThread {
        Thread() : MSchedulerThread(nullptr) {}
        void Note()
        {
            APTTYPE type = APTTYPE_CURRENT;
            APTTYPEQUALIFIER qualifier;
            const bool none = CoGetApartmentType(&type, &qualifier) != S_OK;
            apartments.push_back(none ? -1 : type);
        }
        void ThreadFunction() override
        {
            MSchedulerThread::ThreadFunction();
            Note();
        }
        std::vector<int> apartments;
    };
    Thread thread;
    const PlatformEvent event(EventReset::Automatic);
    thread.RegisterSchedulerEvent(event, MakeFunctor(&thread, &Thread::Note).release());
    SetEvent(event);
    thread.Start();
    while (thread.apartments.empty())
        thread.Flush();
    EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
              Raised([&] { thread.RegisterSchedulerEvent(event, nullptr); }));
    thread.Stop();
    EXPECT_EQ((std::vector<int>{APTTYPE_MTA, -1}), thread.apartments);
    MSchedulerThread running(nullptr); // stops itself
    running.Start();
}
