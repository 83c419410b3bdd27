#include "engine/MSchedulerThread.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <objbase.h>

namespace
{

/// A scheduler thread with one event that does what a test says.
struct Scheduled {
    explicit Scheduled(const Action& action) : action(action) { Register(); }

    void Register()
    {
        MCallbackFunctorPtr functor = FunctorFor(action);
        thread.RegisterSchedulerEvent(event, functor.get());
        functor.release();
    }

    PlatformEvent event{EventReset::Automatic};
    Action action;
    FailureRecorder recorder;
    MSchedulerThread thread{&recorder};
};

bool IsInCom()
{
    APTTYPE type;
    APTTYPEQUALIFIER qualifier;
    return CoGetApartmentType(&type, &qualifier) == S_OK && type == APTTYPE_MTA;
}

} // namespace

TEST(MSchedulerThread, RestartedItServesWhatWasRegisteredEarlierAndLater)
{
    Gate first;
    Scheduled scheduled([&] { first.Open(); });
    scheduled.thread.Start();
    EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
              Raised([&] { scheduled.Register(); }));
    scheduled.thread.Flush();
    scheduled.thread.Stop();

    Gate second;
    PlatformEvent event(EventReset::Automatic);
    const Action open = [&] { second.Open(); };
    scheduled.thread.RegisterSchedulerEvent(event, FunctorFor(open).release());
    scheduled.thread.Start();
    SetEvent(scheduled.event);
    SetEvent(event);
    first.Pass();
    second.Pass();
}

TEST(MSchedulerThread, FunctorsRunInTheMultithreadedApartment)
{
    Gate done;
    bool inCom = false;
    Scheduled scheduled([&] {
        inCom = IsInCom();
        done.Open();
    });
    scheduled.thread.Start();
    SetEvent(scheduled.event);
    done.Pass();
    EXPECT_TRUE(inCom);
}

TEST(MSchedulerThread, FunctorThatFailsEndsTheThreadWhichLeavesComOnce)
{
    Gate ended;
    bool leftOnce = false;
    bool leftForGood = false;
    Scheduled scheduled([] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        Raise(L"Unexpected");
    });
    scheduled.recorder.onError = [&] {
        leftOnce = IsInCom(); // by the entry that the functor made
        CoUninitialize();
        leftForGood = !IsInCom();
        ended.Open();
    };
    scheduled.thread.Start();
    SetEvent(scheduled.event);
    ended.Pass();
    EXPECT_EQ("Unexpected;", scheduled.recorder.failures);
    EXPECT_TRUE(leftOnce);
    EXPECT_TRUE(leftForGood);
    EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
              Raised([&] { scheduled.Register(); }));
}
