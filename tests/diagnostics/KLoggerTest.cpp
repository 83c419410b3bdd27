#include "diagnostics/KLogger.h"

#include "tests/diagnostics/LogModel.h"
#include "tests/support/Allocations.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/LeakCheck.h"

#include <atomic>
#include <ctime>
#include <functional>
#include <random>
#include <sstream>
#include <thread>

#include <windows.h>

namespace
{

const std::uint32_t ringSize = 0x20000;

// The ring pointer is the first field of a core, for tools and for us.
KLogRecord* Ring(KLogger& core)
{
    return *reinterpret_cast<KLogRecord**>(&core);
}

/// What the process prints numbers with, which is not what a dump does.
struct Thousands : std::numpunct<char> {
    std::string do_grouping() const override { return "\1"; }
};

/// Text that has something done when the first record is flushed.
class InterruptedText : public std::stringbuf
{
public:
    explicit InterruptedText(const std::function<void()>& interruption) : interruption(interruption)
    {
    }

private:
    int sync() override
    {
        if (interruption)
            interruption();
        interruption = nullptr;
        return 0;
    }

    std::function<void()> interruption;
};

/// Whether `action` returns on a thread of its own; where it does not, the thread is ended.
bool Returns(const std::function<void()>& action)
{
    const LPTHREAD_START_ROUTINE run = [](void* context) -> DWORD {
        (*static_cast<const std::function<void()>*>(context))();
        return 0;
    };
    void* const context = const_cast<std::function<void()>*>(&action);
    const HANDLE thread = CreateThread(nullptr, 0, run, context, 0, nullptr);
    const bool returned = WaitForSingleObject(thread, 100) == WAIT_OBJECT_0;
    if (!returned)
        TerminateThread(thread, 0);
    CloseHandle(thread);
    return returned;
}

} // namespace

TEST(KLogger, DumpIsTheTextThatIsComposedOfItsRecordsAnotherWay)
{
    KLogger core;
    LogModel model;
    std::mt19937 random;
    const auto id = [&random] { return (random() % 2 << 31) + random() % 8; };
    const void* const object = &core;
    for (int i = 0; i < 16; ++i) {
        const std::string name = "name " + std::to_string(i);
        const std::uint32_t key = id(), state = random() % 4;
        core.SetIdName(key, name);
        model.ids.emplace(key, name);
        core.SetMessageName(key, name + " of a message");
        model.states.emplace(key, name + " of a message");
        core.SetClassStateName(key, state, name + " of a state");
        model.states.emplace(key * 100 + state, name + " of a state");
    }
    core.SetObjectName(object, "the core");
    model.objects[reinterpret_cast<std::uintptr_t>(object)] = "the core";
    core.SetThreadName("tester");
    model.threads[GetCurrentThreadId()] = "tester";

    const std::int32_t kinds[] = {-202, -201, -105, -104, -103, -102, -101, -25, -23, -22,
                                  -21,  -20,  -14,  -13,  -8,   -7,   -1,   0,   1,   -100};
    for (std::uint32_t i = 0; i < 3000; ++i) {
        core.AddRecord(kinds[random() % 20], id(), id(), id(), id(),
                       random() % 2 ? object : reinterpret_cast<const void*>(~std::uintptr_t{i}));
        KLogRecord& record = Ring(core)[i];
        record.time += static_cast<std::int32_t>(random() >> random() % 32);
        record.threadId = random() % 3 ? record.threadId : id();
        model.records.push_back(record);
    }
    const std::locale before = std::locale::global(std::locale(std::locale(), new Thousands));
    const std::string dump = TakeDump(core);
    std::locale::global(before);
    EXPECT_EQ(model.Text(), dump.substr(dump.find("\n%%\n") + 4));
    std::string text = "old";
    core.FormatRecord(text, 5, 7);
    EXPECT_EQ(model.RecordText(model.records[5], model.records[7].time), text);
    core.FormatRecord(text, 3000, 0);
    EXPECT_EQ("", text);
    core.FormatRecord(text, ringSize, 0);
    EXPECT_EQ("*OUT OF BOUNDS*", text);
}

TEST(KLogger, HeaderTellsTheStartByBothClocks)
{
    LARGE_INTEGER begin, end, frequency;
    QueryPerformanceFrequency(&frequency);
    const __time64_t early = _time64(nullptr);
    QueryPerformanceCounter(&begin);
    KLogger core;
    QueryPerformanceCounter(&end);
    const __time64_t late = _time64(nullptr);

    // Where there is no record, times count from 0.
    double started = 0;
    int milliseconds = -1, dateAt = 0;
    const std::string header = TakeDump(core);
    std::sscanf(header.c_str(), "%%%% Reference time: %lf is approximately %dms past %n", &started,
                &milliseconds, &dateAt);
    const double second = static_cast<double>(frequency.QuadPart);
    EXPECT_LE(static_cast<double>(begin.QuadPart) / second, started + 0.000001);
    EXPECT_GE(static_cast<double>(end.QuadPart) / second, started);
    EXPECT_TRUE(milliseconds >= 0 && milliseconds < 1000);
    const std::string date = header.substr(static_cast<std::size_t>(dateAt));
    EXPECT_TRUE(date == _ctime64(&early) + std::string("%%\n") ||
                date == _ctime64(&late) + std::string("%%\n"));
}

TEST(KLogger, WrappedRingStartsAtTheOldestWhoseTimeIsReadOnceAndEndsWithTheNewest)
{
    KLogger core;
    LARGE_INTEGER second;
    QueryPerformanceFrequency(&second);
    for (std::uint32_t i = 0; i < ringSize + 3; ++i) {
        core.AddRecord(0, i, 0, 0, 0, nullptr);
        Ring(core)[i % ringSize].time = second.QuadPart * (1 + i);
    }
    // A writer takes the slot of the oldest record, once that is written.
    InterruptedText text([&core] { core.AddRecord(0, 0, 0, 0, 0, nullptr); });
    std::ostream out(&text);
    core.WriteDump(out);

    const std::string dump = text.str();
    std::uint32_t count = 0;
    for (std::size_t at = 0; (at = dump.find("% Timing_point (", at)) != std::string::npos;
         ++count) {
        ASSERT_EQ(count + 3, std::stoul(dump.substr(at + 16, 6)));
        at = dump.find("\n    ", at) + 5;
        ASSERT_EQ(std::to_string(count) + ".000000, ",
                  dump.substr(at, dump.find(' ', at) + 1 - at));
    }
    EXPECT_EQ(ringSize, count);
}

TEST(KLogger, DumpEndsWhereItsStreamRaisesAndThatOfANullCoreBeforeItBegins)
{
    KLogger core;
    KLogger* volatile none = nullptr;
    none->AddRecord(0, 0, 0, 0, 0, nullptr);
    none->SetIdName(1, "name");
    none->SetMessageName(1, "name");
    none->SetClassStateName(1, 1, "name");
    none->SetObjectName(nullptr, "name");
    none->SetThreadName("name");
    none->CopyNamesTo(core);
    EXPECT_EQ("", TakeDump(*none));

    struct : std::streambuf {
    } refusing;
    std::ostream out(&refusing);
    out.exceptions(std::ios::badbit);
    EXPECT_NO_THROW(core.WriteDump(out));
}

TEST(KLogger, ANameThatFindsNoMemoryClosesItsTableToNamesAndNothingElse)
{
    LeakCheck::Skip(); // threads that are ended hold texts
    const std::string name(KLogNames::blockSize, 'x');
    KLogger other;
    for (int failing = 0; failing < 5; ++failing) {
        KLogger core;
        const std::function<void()> namings[] = {
            [&] { core.SetIdName(1, name); },
            [&] { core.SetObjectName(&core, name); },
            [&] { core.SetThreadName(name); },
            [&] { core.SetMessageName(1, name); },
            [&] { core.SetClassStateName(1, 1, name); },
        };
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc,
                  RunShortOfMemory(AllocationFailure::Throws, 1, namings[failing]));
        for (int i = 0; i < 5; ++i) // messages and states share a table
            EXPECT_EQ(i != failing && (i < 3 || failing < 3), Returns(namings[i])) << failing << i;
        EXPECT_FALSE(Returns([&] { core.CopyNamesTo(other); }));
        EXPECT_TRUE(Returns([&] { TakeDump(core); }));
    }
}

TEST(KLogger, CopiedNamesComeAfterThoseThatAreThere)
{
    KLogger core, other;
    core.SetIdName(1, "first");
    core.SetIdName(1, "second");
    core.SetClassStateName(4, 100, "state 100 of class 4");
    core.SetClassStateName(5, 0, "too late");
    core.SetMessageName(3, "hello");
    core.SetObjectName(nullptr, "nothing");
    core.SetThreadName("tester");
    other.SetIdName(2, "other's own");
    core.SetIdName(2, "copied too late");
    core.CopyNamesTo(other);
    core.CopyNamesTo(core);

    other.AddRecord(-25, 0, 0, 5, 1, nullptr);
    other.AddRecord(-21, 3, 0, 1, 2, nullptr);
    const std::string object = " for_object 0000000000000000 (nothing) in_thread " +
                               std::to_string(GetCurrentThreadId()) + " (tester)";
    EXPECT_EQ((std::vector<std::string>{
                  "% State_change to state 100 of class 4 in_class (unknown) at first" + object,
                  "% Message_send hello in_class first at other's own" + object}),
              DumpedTexts(other));
}

TEST(KLogger, WritersLoseNothingToOneAnotherAndADumpBesideThemShowsWholeRecords)
{
    KLogger core;
    const std::uint32_t each = 20000;
    std::atomic<int> ready(0);
    const auto write = [&](const void* own) {
        for (++ready; ready < 3;)
            SwitchToThread();
        for (std::uint32_t i = 0; i < each; ++i) {
            core.AddRecord(-7, 1, 2, 3, 4, own);
            core.SetObjectName(reinterpret_cast<const void*>(std::uintptr_t{i}), "same");
        }
    };
    std::thread first(write, nullptr), second(write, &core);
    core.AddRecord(-7, 1, 2, 3, 4, &core);
    ++ready;
    for (const DumpedRecord& record : ReadDump(TakeDump(core)))
        ASSERT_EQ(7u, record.numbers.size());
    first.join();
    second.join();
    EXPECT_EQ(2 * each + 1, DumpedTexts(core).size());
    for (std::uint32_t i = 0; i < each; ++i)
        ASSERT_NE(nullptr, core.FindObjectName(i));
}
