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

/// Counts how often the thread that it was registered on leaves COM.
class ComSpy : public IInitializeSpy
{
public:
    void Register()
    {
        ULARGE_INTEGER cookie;
        CoRegisterInitializeSpy(this, &cookie);
    }

    int leaves = 0;

private:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE PreInitialize(DWORD, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PostInitialize(HRESULT result, DWORD, DWORD) override
    {
        return result;
    }
    HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD) override
    {
        ++leaves;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) override { return S_OK; }
};

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

TEST(MSchedulerThread, FunctorsRunInTheMultithreadedApartmentWhichTheThreadLeavesAtItsEnd)
{
    Gate done;
    ComSpy spy;
    bool inCom = false;
    Scheduled scheduled([&] {
        spy.Register();
        inCom = IsInCom();
        done.Open();
    });
    scheduled.thread.Start();
    SetEvent(scheduled.event);
    done.Pass();
    EXPECT_TRUE(inCom);
    scheduled.thread.Stop();
    EXPECT_EQ(1, spy.leaves);
}

TEST(MSchedulerThread, FunctorThatFailsEndsTheThreadWhichLeavesComOnce)
{
    Gate ended;
    ComSpy spy;
    int leavesAtTheError = 0;
    Scheduled scheduled([&] {
        spy.Register();
        Raise(L"Unexpected");
    });
    scheduled.recorder.onError = [&] {
        leavesAtTheError = spy.leaves;
        ended.Open();
    };
    scheduled.thread.Start();
    SetEvent(scheduled.event);
    ended.Pass();
    EXPECT_EQ("Unexpected;", scheduled.recorder.failures);
    EXPECT_EQ(1, leavesAtTheError);
    EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
              Raised([&] { scheduled.Register(); }));
    scheduled.thread.Stop();
    EXPECT_EQ(1, spy.leaves);
}
