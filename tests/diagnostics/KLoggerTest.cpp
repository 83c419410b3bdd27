#include "diagnostics/KLogger.h"

#include "tests/support/Allocations.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/LeakCheck.h"

#include <atomic>
#include <ctime>
#include <functional>
#include <map>
#include <random>
#include <sstream>
#include <thread>
#include <utility>

#include <windows.h>

namespace
{

typedef std::map<std::uint32_t, std::string> Names;

Names MakeKinds()
{
    std::istringstream table(
        "-202 Log_module_added -201 Log_module_removed -105 Root_error -104 Cascade_error "
        "-103 Dismissed_error -102 Return_error -101 Warning -25 State_change -23 Notify "
        "-22 Update -21 Message_send -20 Message_receive -14 Construction -13 Destruction "
        "-8 Scope_pop -7 Scope_push -1 Timing_point 0 Timing_point");
    Names kinds;
    for (std::int32_t kind = 0; table >> kind;)
        table >> kinds[static_cast<std::uint32_t>(kind)];
    return kinds;
}

std::string Of(const Names& names, std::uint64_t key, const std::string& absent)
{
    const auto name = names.find(static_cast<std::uint32_t>(key));
    return name == names.end() || name->first != key ? absent : name->second;
}

/// Microseconds cut towards zero, in a notation whose digits behind the point always add.
std::string Age(std::int64_t ticks)
{
    LARGE_INTEGER second;
    QueryPerformanceFrequency(&second);
    const std::int64_t micro = ticks * 1000000 / second.QuadPart;
    const std::int64_t rest = (micro % 1000000 + 1000000) % 1000000;
    return std::to_string((micro - rest) / 1000000) + "." +
           std::to_string(1000000 + rest).substr(1);
}

/// The text of a log, composed of what was given to it in a way of its own.
struct Model {
    std::string Text(const KLogRecord& record, std::int64_t reference) const
    {
        std::string n[5]; // the numbers between time and object
        for (int i = 0; i < 5; ++i)
            n[i] = std::to_string(reinterpret_cast<const std::int32_t*>(&record.kind)[i]);
        char object[17];
        std::snprintf(object, sizeof object, "%016llX", record.object);
        const std::string thread = std::to_string(static_cast<std::int32_t>(record.threadId));
        const std::string unknown = "(unknown)";
        const int kind = record.kind;
        std::string text = "% " + Of(kinds, static_cast<std::uint32_t>(kind), "unknown event");
        if (kind <= -101 && kind >= -105)
            text += " " + Of(ids, record.param1, unknown);
        if (kind == -25)
            text += " to " + Of(states, record.classId * 100 + record.param1, "state_" + n[1]);
        if (kind == -21)
            text += " " + Of(states, record.param1, n[1]);
        if (kind == 0)
            text += " (" + n[1] + ", " + n[2] + ")";
        text += " in_class " + Of(ids, record.classId, unknown);
        text += kind == 0 && !ids.count(record.pointId) ? " at_point " + n[4]
                                                        : " at " + Of(ids, record.pointId, unknown);
        text += std::string(" for_object ") + object + " (" +
                Of(objects, record.object, "unknown") + ")";
        if (record.threadId)
            text += " in_thread " + thread + " (" + Of(threads, record.threadId, "unknown") + ")";
        text += "\n    " + Age(record.time - reference);
        for (const std::string& number : n)
            text += ", " + number;
        return text + ", " + std::to_string(static_cast<std::int64_t>(record.object)) + ", " +
               thread;
    }

    const Names kinds = MakeKinds();
    Names ids, states, objects, threads;
};

/// What the process prints numbers with, which is not what a dump does.
struct Thousands : std::numpunct<char> {
    std::string do_grouping() const override { return "\1"; }
};

/// Has a writer take the slot of the oldest record, over and over.
struct InterruptedText : std::stringbuf {
    int sync() override { return static_cast<int>(++oldest->time) * 0; }
    KLogRecord* oldest;
};

/// All ways to give `name` to something.
std::vector<std::function<void()>> Namings(KLogger* core, const std::string& name)
{
    return {[=] { core->SetIdName(1, name); }, [=] { core->SetObjectName(core, name); },
            [=] { core->SetThreadName(name); }, [=] { core->SetMessageName(1, name); },
            [=] { core->SetClassStateName(1, 1, name); }};
}

/// Whether `action` returns on a thread of its own, as it is expected to or not; where it does not,
/// the thread is ended.
bool Returns(bool expected, std::function<void()> action)
{
    const LPTHREAD_START_ROUTINE run = [](void* context) -> DWORD {
        (*static_cast<std::function<void()>*>(context))();
        return 0;
    };
    const HANDLE thread = CreateThread(nullptr, 0, run, &action, 0, nullptr);
    const bool returned = WaitForSingleObject(thread, expected ? 20000 : 50) == WAIT_OBJECT_0;
    TerminateThread(thread, 0);
    CloseHandle(thread);
    return returned;
}

} // namespace

TEST(KLogger, DumpIsTheTextThatIsComposedOfItsRecordsAnotherWay)
{
    PassingCore core, feeding;
    Model model;
    std::string expected;
    std::mt19937 random;
    const auto id = [&random] { return (random() % 2 << 31) + random() % 8; };
    const auto name = [&](KLogger& log, const std::string& text) {
        const std::uint32_t key = id(), state = random() % 250;
        log.SetIdName(key, text);
        log.SetMessageName(key, text + " sent");
        log.SetClassStateName(key, state, text + " entered");
        log.SetObjectName(reinterpret_cast<void*>(std::uintptr_t{key}), text);
        log.SetThreadName(text);
        model.ids.emplace(key, text);
        model.states.emplace(key, text + " sent");
        model.states.emplace(key * 100 + state, text + " entered");
        model.objects.emplace(key, text);
        model.threads.emplace(GetCurrentThreadId(), text);
    };
    for (KLogger* const log : {&core, &feeding})
        for (int i = 0; i < 10; ++i)
            name(*log, "name " + std::to_string(i));
    feeding.CopyNamesTo(core);
    core.CopyNamesTo(core);
    for (std::uint32_t i = 0; i < 3000; ++i) {
        const std::uint32_t known = std::next(model.kinds.begin(), random() % 18)->first;
        core.AddRecord(static_cast<std::int32_t>(random() % 10 ? known : random()), id(), id(),
                       id(), id(), reinterpret_cast<void*>(std::uintptr_t{id()} << random() % 33));
        KLogRecord& record = Ring(core)[i];
        record.time += static_cast<std::int32_t>(random() >> random() % 32);
        record.threadId = random() % 3 ? record.threadId : id();
        expected += model.Text(record, Ring(core)->time) + "\n";
    }
    const std::locale before = std::locale::global(std::locale(std::locale(), new Thousands));
    const std::string dump = TakeDump(core);
    std::locale::global(before);
    EXPECT_EQ(expected, dump.substr(dump.find("\n%%\n") + 4));
    std::string text = "old";
    core.FormatRecord(text, 5, 7);
    EXPECT_EQ(model.Text(Ring(core)[5], Ring(core)[7].time), text);
    core.FormatRecord(text, 3000, 0);
    EXPECT_EQ("", text);
    core.FormatRecord(text, ringSize, 0);
    EXPECT_EQ("*OUT OF BOUNDS*", text);
}

TEST(KLogger, HeaderTellsTheStartByBothClocks)
{
    const __time64_t early = _time64(nullptr);
    PassingCore core;
    const __time64_t late = _time64(nullptr);
    Ring(core)->time = 1;
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    const std::string header = TakeDump(core), date = header.substr(header.find(" past ") + 6, 25);
    EXPECT_TRUE(date == _ctime64(&early) || date == _ctime64(&late)) << header;
    EXPECT_EQ(0u, header.find("%% Reference time: "));
    EXPECT_NEAR(std::stod(Age(now.QuadPart)), std::stod(header.substr(19)), 20);
    EXPECT_GT(1000u, std::stoul(header.substr(header.find(" approximately ") + 15)));
}

TEST(KLogger, WrappedRingStartsAtTheOldestWhoseTimeIsReadOnceAndEndsWithTheNewest)
{
    PassingCore core;
    LARGE_INTEGER second;
    QueryPerformanceFrequency(&second);
    for (std::uint32_t i = 0; i < ringSize + 3; ++i) {
        core.AddRecord(0, i, 0, 0, 0, nullptr);
        Ring(core)[i % ringSize].time = second.QuadPart * 100 * (1 + i);
    }
    InterruptedText text;
    text.oldest = Ring(core) + 3;
    std::ostream out(&text);
    core.WriteDump(out);
    const std::string dump = text.str();
    std::uint32_t count = 0;
    for (std::size_t at = 0; (at = dump.find("% Timing", at)) != std::string::npos; ++count) {
        ASSERT_EQ(count + 3, std::stoul(dump.substr(at + 16, 6)));
        at = dump.find("\n    ", at) + 5;
        ASSERT_EQ(std::to_string(100 * count) + ".000000",
                  dump.substr(at, dump.find(',', at) - at));
    }
    EXPECT_EQ(ringSize, count);
}

TEST(KLogger, DumpEndsWhereItsStreamRaisesAndNullCoresAndRingsTakeNothing)
{
    PassingCore core;
    KLogger* volatile none = nullptr;
    none->AddRecord(0, 0, 0, 0, 0, nullptr);
    for (const auto& naming : Namings(none, "name"))
        naming();
    none->CopyNamesTo(core);
    EXPECT_EQ("", TakeDump(*none));
    KLogRecord* const ring = std::exchange(Ring(core), nullptr);
    core.AddRecord(0, 0, 0, 0, 0, nullptr);
    Ring(core) = ring;
    EXPECT_EQ(0u, DumpedTexts(core).size());

    struct : std::streambuf {
        int overflow(int) override { throw 7; }
    } refusing;
    std::ostream out(&refusing);
    out.exceptions(std::ios::badbit);
    EXPECT_NO_THROW(core.WriteDump(out));
}

TEST(KLogLock, HoldsNobodyUpBeforeItIsInitialised)
{
    KLogLock lock;
    lock.Enter();
    std::thread([&] {
        lock.Enter();
        lock.Leave();
    }).join();
    lock.Leave();
}

TEST(KLogger, ANameThatFindsNoMemoryClosesItsTableToNamesAndNothingElse)
{
    LeakCheck::Skip(); // a thread that is ended in the middle leaves its part of the action
    const std::string name(KLogNames::blockSize, 'x');
    for (std::size_t failing = 0; failing < 5; ++failing) {
        PassingCore core, other;
        const auto namings = Namings(&core, name);
        const auto how = failing % 2 ? AllocationFailure::Throws : AllocationFailure::AnswersNull;
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, RunShortOfMemory(how, 1, namings[failing]));
        for (std::size_t i = 0; i < 5; ++i) {
            const bool open = i != failing && (i < 3 || failing < 3); // 3 and 4 share a table
            EXPECT_EQ(open, Returns(open, namings[i])) << failing << i;
        }
        EXPECT_FALSE(Returns(false, [&] { core.CopyNamesTo(other); }));
        EXPECT_FALSE(Returns(false, [&] { other.CopyNamesTo(core); }));
        EXPECT_TRUE(Returns(true, [&] { TakeDump(core); }));
    }
}

TEST(KLogger, WritersLoseNothingToOneAnotherAndADumpBesideThemShowsWholeRecords)
{
    PassingCore core;
    const std::uint32_t each = 20000;
    std::atomic<int> ready(0);
    const auto write = [&] {
        for (++ready; ready < 3;)
            SwitchToThread();
        for (std::uint32_t i = 0; i < each; ++i) {
            core.AddRecord(-7, 1, 2, 3, 4, &core);
            core.SetObjectName(reinterpret_cast<void*>(std::uintptr_t{i}), "same");
        }
    };
    std::thread first(write), second(write);
    for (++ready; ready < 3;)
        SwitchToThread();
    for (const DumpedRecord& record : ReadDump(TakeDump(core)))
        ASSERT_EQ(7u, record.numbers.size());
    first.join();
    second.join();
    EXPECT_EQ(2 * each, DumpedTexts(core).size());
    for (std::uint32_t i = 0; i < each; ++i)
        ASSERT_NE(nullptr, core.FindObjectName(i));
}
