// A host, and what a module does on threads of its own while it is in a host's hands.

#include "varek/Host.h"
#include "tests/engine/EngineFixtures.h"
#include "tests/support/LeakCheck.h"
#include "tests/varek/FaceModule.h"
#include "varek/Testing.h"
#include "varek/Varek.h"

#include <stdexcept>

namespace
{

/// The size of the file in C:\Temp that the pattern fits, which is gone then; 0 when none does.
unsigned long SizeOfAndDelete(const std::string& pattern)
{
    const std::string folder = "C:\\Temp\\";
    WIN32_FIND_DATAA found = {};
    FindClose(FindFirstFileA((folder + pattern).c_str(), &found));
    DeleteFileA((folder + found.cFileName).c_str());
    return found.nFileSizeLow;
}

} // namespace

TEST(Host, SaysInWordsWhatDoesNotFit)
{
    const std::pair<const wchar_t*, const char*> modules[] = {
        {L"no-such.dll", "varek.Host:CannotLoad module=no-such.dll winErrorCode=126"},
        {L"ntdll.dll", "varek.Host:NotAModule function=_ZN5Varek7Runtime17AttachMFlowLoggerEP11"
                       "MFlowLogger module=ntdll.dll"},
        {L"unfit-module.dll", "module=unfit-module.dll moduleSdk=9.9.1 by "},
    };
    for (const auto& module : modules)
        EXPECT_NE(std::string::npos,
                  Raised([&] { varek::Host host(module.first); }).find(module.second));
    EXPECT_FALSE(GetModuleHandleW(L"unfit-module.dll"));
}

TEST(Host, LoadsJoinsAndLetsGoOfAModuleWhoseWorkerServesHandlesAndTimersUntilThen)
{
    LeakCheck::Skip();
    const varek::Recording recording;
    std::atomic<int> signals{0}, ticks{0}, once{0};
    PlatformEvent event(EventReset::Automatic);
    {
        LoadedFace face;
        EXPECT_EQ("varek.Host:NoSuchFunction function=Nothing",
                  Raised([&] { face.Find<void()>("Nothing"); }));
        face.When(event, [&] { ++signals; });
        face.Every(5, [&] { ++ticks; });
        face.After(1, [&] { ++once; });
        face.After(20, [&] {
            EXPECT_EQ("varek.Worker:CannotStopSelf", Raised(face.StopWorker));
            EXPECT_EQ("varek.Worker:Running", Raised(face.StartWorker));
            face.Call([&] { SetEvent(event); });
        });
        for (int starts = 1; starts <= 2; ++starts) {
            face.StartWorker();
            EXPECT_EQ("varek.Worker:Running", Raised(face.StartWorker));
            EXPECT_EQ("varek.Worker:Running", Raised([&] { face.Every(1, [] {}); }));
            while (signals < starts || ticks < 3 * starts)
                Sleep(1);
            if (starts == 1)
                face.StopWorker();
            EXPECT_EQ(starts, once);
        }
        recording.Expect(varek::Scope(L"varek", L"Call"));
        face.WriteLog("C:\\Temp\\face-host-test.log");
        EXPECT_LT(1000u, SizeOfAndDelete("face-host-test.log"));
        EXPECT_EQ("varek.Host:CannotWrite path=C:\\Temp",
                  Raised([&] { face.WriteLog("C:\\Temp"); }));
        face.Shutdown();
        EXPECT_EQ("varek.Call:ProcessorStopped", Raised([&] { face.Call([] {}); }));
    }
    EXPECT_FALSE(GetModuleHandleW(L"face-module.dll"));
}

TEST(Host, ThatCannotShutDownSaysSoAndLeavesTheModuleLoaded)
{
    LeakCheck::Skip();
    testing::internal::CaptureStderr();
    std::unique_ptr<LoadedFace> face(new LoadedFace);
    face->Call([&] { face.reset(); });
    EXPECT_EQ("the module could not be shut down: MEngineThread.Stop:CannotStopSelf\n",
              testing::internal::GetCapturedStderr());
    LoadedFace().Shutdown();
    EXPECT_TRUE(FreeLibrary(GetModuleHandleW(L"face-module.dll")));
    EXPECT_FALSE(GetModuleHandleW(L"face-module.dll"));
}

TEST(Worker, WhatItsFunctionsRaiseEndsItAndIsToldToTheHostOrShown)
{
    LeakCheck::Skip();
    const std::string start = "a thread of face-module.dll has ended: ", what(2000, 'e');
    for (const bool listens : {true, false}) {
        std::string told;
        varek::HostOptions options;
        if (listens) {
            options.onFailure = [&](auto& chain) { told = start + varek::ToUtf8(chain); };
            options.dumpPrefix = L"C:\\Temp\\face";
        }
        testing::internal::CaptureStderr();
        {
            LoadedFace face(options);
            Gate over;
            face.After(1, [&] { over.Open(), throw std::runtime_error(what); });
            face.StartWorker();
            over.Pass();
            face.StopWorker();
            face.Call([] {});
        }
        told += testing::internal::GetCapturedStderr();
        EXPECT_EQ(start, told.substr(0, start.size()));
        MException chain;
        varek::FromXml(varek::FromUtf8(told).c_str() + start.size(), chain, L"ExceptionChain");
        EXPECT_EQ("varek.Worker:StandardException type=St13runtime_error what=" + what,
                  FailureText(chain));
    }
}

TEST(Watchdog, TellsOnceOfWhatRunsTooLongWithTheRecorderIfThereIsMemoryForIt)
{
    LeakCheck::Skip(); // the module stays
    const std::chrono::milliseconds limit(20);
    std::atomic<int> told{0};
    varek::Overrun last;
    const auto report = [&](const varek::Overrun& overrun) {
        last = {overrun.work, overrun.threadId, overrun.running, overrun.dump.substr(0, 12)};
        ++told;
    };
    std::unique_ptr<varek::Watchdog> watchdog(new varek::Watchdog(limit, report));
    EXPECT_EQ("varek.Watchdog:AlreadyOn", Raised([&] { varek::Watchdog(limit, nullptr); }));
    const std::function<void(const Action&)> ways[] = {
        [](const Action& action) { varek::Call(action); },
        [](const Action& action) {
            varek::detail::ModuleProcessor().ExecuteSynchronously(NewCommand(action));
        },
        [](const Action& action) { varek::Post(action); },
        [](const Action& action) { varek::Post(NewEvent([&] { action(); })); }};
    varek::Call([] {});
    for (int call = 0; call <= 4 || last.dump.empty(); ++call) {
        const int way = call % 4;
        unsigned long threadId = 0;
        Gate done;
        const Action work = [&] {
            threadId = GetCurrentThreadId();
            while (told == call)
                Sleep(1);
            Sleep(60);
            done.Open();
        };
        if (call >= 4)
            ArmAllocationFailureElsewhere(AllocationFailure::Throws, call - 3);
        ways[way](work);
        done.Pass();
        const bool met = DisarmAllocationFailure();
        EXPECT_EQ(call + 1, told);
        EXPECT_EQ(way < 2 ? WatchedWork::Kind::Command : WatchedWork::Kind::Event, last.work);
        EXPECT_TRUE(threadId == last.threadId && limit <= last.running);
        EXPECT_EQ(call >= 4 && met ? "" : "%% Reference", last.dump);
    }
    watchdog.reset();
    told = 0;
    varek::Call([] { Sleep(60); });
    EXPECT_EQ(0, told);

    WatchedWork::BeginWatching();
    std::vector<std::unique_ptr<WatchedWork>> more;
    while (more.size() < 70)
        more.emplace_back(new WatchedWork(WatchedWork::Kind::Event));
    WatchedWork::TellOverdue(limit - limit, [&](auto...) { ++told; });
    WatchedWork::EndWatching();
    EXPECT_EQ(64, told); // as many as it has places for
}

TEST(Testing, RaisesWhatIsNotAsExpectedWithoutAFramework)
{
    LeakCheck::Skip();
    LoadedFace face;
    const Action fail = [] { throw std::runtime_error("posted"); };
    EXPECT_EQ("", Raised([&] { face.ExpectError(L"StandardException", fail); }));
    EXPECT_EQ(0u, Raised([&] {
                      face.ExpectError(L"Other", fail);
                  }).find("varek.Recording:NotAsExpected finding=there is no Root_error Other"));
}

TEST(HostDeathTest, ACrashIsToldAndLeavesAMinidumpAndTheRecordersText)
{
    LeakCheck::Skip();
    const auto crash = [] {
        varek::HostOptions options;
        options.dumpPrefix = L"C:\\Temp\\face-crash";
        LoadedFace face(options);
        face.Call([] { *reinterpret_cast<volatile int*>(0x1234) = 1; });
    };
    EXPECT_EXIT(crash(), testing::ExitedWithCode(EXCEPTION_ACCESS_VIOLATION),
                "a thread of the module has crashed; minidump in ");
    EXPECT_LT(0x500000u, SizeOfAndDelete("face-crash*.dmp"));
    EXPECT_LT(1000u, SizeOfAndDelete("face-crash*.log"));
}
