// The face without memory, and everything of it at once through a shutdown.

#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"
#include "tests/varek/FaceModule.h"
#include "tests/varek/LeavesNothing.h"
#include "varek/Testing.h"
#include "varek/Varek.h"

namespace
{

const wchar_t path[] = L"C:\\Temp\\face-shortage-test.xml";
const MString area = L"FaceShortageTest";

struct Kept {
    std::vector<std::wstring> texts{L"one", L"two"};
    std::unique_ptr<MException> failure{new MException(MError(L"Code"))};
};

void Describe(varek::Filing& filing, Kept& kept)
{
    filing(L"Texts", kept.texts);
    filing(L"Failure", kept.failure);
}

/// Does the work once, on a worker.
void RunOnWorker(const Action& work)
{
    Gate begin, done;
    varek::Worker worker;
    worker.Every(std::chrono::hours(1), [] {});
    worker.When(begin.event, [&] {
        ResetEvent(begin.event);
        work();
        done.Open();
    });
    begin.Open();
    worker.Start();
    done.Pass();
}

} // namespace

TEST(Shortage, WhateverIsDoneIsDoneOnceOrRaisedAndLeavesNothing)
{
    LeakCheck::Skip(); // the module stays
    std::atomic<int> ran{0};
    const Action work = [&] { ++ran; };
    Kept kept;
    const MString text = varek::ToXml(kept);
    const std::tuple<const char*, int, Action> actions[] = {
        {"Call", 1, [&] { varek::Call(work); }},
        {"CallFor", 1, [&] { varek::CallFor(std::chrono::hours(1), work); }},
        {"CallAsync", 1, [&] { varek::CallAsync(work, varek::CancelToken()).get(); }},
        {"Post", 1, [&] { varek::Post(work); }},
        {"Worker", 1, [&] { RunOnWorker(work); }},
        {"Watchdog", 0, [] { varek::Watchdog(std::chrono::hours(1), nullptr); }},
        {"ToXml", 0, [&] { varek::ToXml(kept); }},
        {"FromXml", 0, [&] { varek::FromXml(text, kept); }},
        {"SaveXml", 0, [&] { varek::SaveXml(path, kept); }},
        {"LoadXml", 0, [&] { varek::LoadXml(path, kept); }},
        {"SaveRegistry", 0, [&] { varek::SaveRegistry(area, kept); }},
        {"LoadRegistry", 0, [&] { varek::LoadRegistry(area, kept); }},
        {"Host", 0, [] { varek::Host host(L"face-module.dll"); }},
    };
    for (const auto& each : actions) {
        SCOPED_TRACE(std::get<0>(each));
        const Action act = std::get<2>(each);
        act();
        const auto shortage = [&] {
            varek::AwaitEvents();
            ran = 0;
            ForEachFailingAllocation(AllocationFailure::Throws, act, [&](ShortageOutcome outcome) {
                EXPECT_NE(ShortageOutcome::Completed, outcome);
                varek::AwaitEvents();
                EXPECT_EQ(0, ran);
            });
            varek::AwaitEvents();
            EXPECT_EQ(std::get<1>(each), ran);
            kept = Kept();
        };
        // The compiler's run time of a module leaves handles open.
        EXPECT_TRUE(LeavesNothing(shortage, std::get<0>(each) != std::string("Host")));
    }
    DeleteFileW(path);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\FaceShortageTest");
}

TEST(Shutdown, MeetsEverythingAtOnceAndNothingRunsAfterIt)
{
    LeakCheck::Skip(); // names
    for (int storm = 0; storm < 3; ++storm) {
        const auto owned = std::make_shared<std::atomic<bool>>(true);
        const Action work = [owned] { EXPECT_TRUE(*owned); };
        {
            LoadedFace face;
            face.Every(1, work);
            const Action steps[] = {[&] { face.Call(work); }, [&] { face.Post(work); },
                                    [&] { face.StartWorker(); }, [&] { face.StopWorker(); }};
            RunOnThreads(5, [&](int number) {
                for (int i = 0; i < 40; ++i)
                    Raised([&] {
                        if (number == 4)
                            i == 20 ? face.Shutdown()
                                    : face.Watch(i % 2 * 1000, [](const varek::Overrun&) {});
                        else
                            steps[(number + i) % 4]();
                    });
            });
            *owned = false;
            EXPECT_NE("", Raised([&] { face.Call(work); }));
            EXPECT_NE("", Raised([&] { face.StartWorker(); }));
        }
        EXPECT_EQ(2, owned.use_count()); // here, and in the work
    }
}
