#include "engine/MSchedulerThread.h"

#include "tests/engine/EngineFixtures.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <objbase.h>

namespace
{

/// Counts how often the thread that it is registered on leaves COM.
struct ComSpy : IInitializeSpy {
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE PreInitialize(DWORD, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PostInitialize(HRESULT, DWORD, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD) override { return ++leaves, S_OK; }
    HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) override { return S_OK; }

    int leaves = 0;
};

} // namespace

TEST(MSchedulerThread, RestartedItServesWhatWasRegisteredEarlierAndLater)
{
    MSchedulerThread thread(nullptr);
    Gate served[2];
    PlatformEvent early(EventReset::Automatic);
    PlatformEvent late(EventReset::Automatic);
    thread.RegisterSchedulerEvent(early, FunctorFor([&] { served[0].Open(); }).release());
    thread.Start();
    thread.Flush();
    thread.Stop();
    thread.RegisterSchedulerEvent(late, FunctorFor([&] { served[1].Open(); }).release());
    thread.Start();
    SetEvent(early);
    SetEvent(late);
    for (Gate& gate : served)
        gate.Pass();
}

TEST(MSchedulerThread, FunctorsRunInTheMultithreadedApartmentWhichEveryWayOutLeavesOnce)
{
    for (bool fails : {false, true}) {
        FailureRecorder recorder;
        MSchedulerThread thread(&recorder);
        ComSpy spy;
        APTTYPE apartment = APTTYPE_CURRENT;
        Gate served;
        PlatformEvent event(EventReset::Automatic);
        const auto action = [&, fails] {
            ULARGE_INTEGER cookie;
            CoRegisterInitializeSpy(&spy, &cookie);
            APTTYPEQUALIFIER qualifier;
            CoGetApartmentType(&apartment, &qualifier);
            served.Open();
            if (fails)
                Raise(L"Unexpected");
        };
        thread.RegisterSchedulerEvent(event, FunctorFor(action).release());
        thread.Start();
        SetEvent(event);
        (fails ? recorder.failed : served).Pass();
        EXPECT_EQ("MSchedulerThread.RegisterSchedulerEvent:ThreadRunning",
                  Raised([&] { thread.RegisterSchedulerEvent(event, nullptr); }));
        thread.Stop();
        EXPECT_EQ(APTTYPE_MTA, apartment);
        EXPECT_EQ(1, spy.leaves);
        EXPECT_EQ(fails ? "Unexpected;" : "", recorder.failures);
    }
}
