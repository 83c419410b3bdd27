#include "engine/MSchedulerThread.h"

#include "tests/engine/EngineFixtures.h"

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
    HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD) override
    {
        ++leaves;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) override { return S_OK; }

    int leaves = 0;
};

} // namespace

TEST(MSchedulerThread, FunctorsRunInTheMultithreadedApartmentWhichEveryWayOutLeavesOnce)
{
    for (bool fails : {false, true}) {
        FailureRecorder recorder;
        MSchedulerThread thread(&recorder);
        ComSpy spy;
        APTTYPE apartment = APTTYPE_CURRENT;
        Gate served;
        const PlatformEvent event(EventReset::Automatic);
        const auto action = [&] {
            ULARGE_INTEGER cookie;
            CoRegisterInitializeSpy(&spy, &cookie);
            APTTYPEQUALIFIER qualifier;
            CoGetApartmentType(&apartment, &qualifier);
            served.Open();
            if (fails)
                Raise("Unexpected");
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
