#include "diagnostics/KLogger.h"

#include "tests/support/DumpedRecord.h"

#include <gtest/gtest.h>

#include <atomic>
#include <ostream>
#include <thread>

#include <windows.h>

namespace
{

const std::uint32_t ringSize = 0x20000;

std::string InThread(const char* name)
{
    return " in_thread " + std::to_string(GetCurrentThreadId()) + " (" + name + ")";
}

} // namespace

TEST(KLogger, RecordShowsItsNumbersSignedBelowTheHeader)
{
    KLogger core;
    const std::string empty = TakeDump(core);
    EXPECT_LT(empty.find(" is approximately "), empty.find("ms past "));
    EXPECT_EQ(empty.size() - 4, empty.find("\n%%\n"));

    const std::uint64_t object = 0x8000000000000007;
    core.AddRecord(-14, 0xFFFFFFFF, 32, 0x80000000, 7, reinterpret_cast<const void*>(object));
    const std::string dump = TakeDump(core);
    EXPECT_EQ(0u, dump.find("%% Reference time: -"));
    const DumpedRecord record = ReadDump(dump).at(0);
    EXPECT_EQ(0.0, record.seconds);
    EXPECT_EQ((std::vector<std::int64_t>{-14, -1, 32, INT32_MIN, 7,
                                         static_cast<std::int64_t>(object), GetCurrentThreadId()}),
              record.numbers);
}

TEST(KLogger, DumpEndsWhereItsStreamRaisesAndThatOfANullCoreBeforeItBegins)
{
    KLogger core;
    KLogger* volatile none = nullptr;
    none->AddRecord(0, 0, 0, 0, 0, nullptr);
    none->SetIdName(1, "name");
    none->CopyNamesTo(core);
    EXPECT_EQ("", TakeDump(*none));

    struct : std::streambuf {
    } refusing;
    std::ostream out(&refusing);
    out.exceptions(std::ios::badbit);
    EXPECT_NO_THROW(core.WriteDump(out));
}

TEST(KLogger, NamesShowWhereTheyAreKnown)
{
    const struct {
        std::int32_t kind;
        std::string named, unnamed;
    } cases[] = {{-105, "Root_error Stuck", "Root_error (unknown)"},
                 {-101, "Warning Stuck", "Warning (unknown)"},
                 {-25, "State_change to Open", "State_change to state_7"},
                 {-21, "Message_send Hello", "Message_send 7"},
                 {-20, "Message_receive", "Message_receive"},
                 {-22, "Update", "Update"},
                 {-1, "Timing_point", "Timing_point"},
                 {0, "Timing_point (7, -8)", "Timing_point (7, -8)"},
                 {5, "unknown event", "unknown event"}};
    const void* const object = reinterpret_cast<const void*>(0x1D2C5A40);
    for (const auto& one : cases) {
        KLogger core;
        core.AddRecord(one.kind, 7, static_cast<std::uint32_t>(-8), 1, 2, object);
        const std::string point = one.kind == 0 ? " at_point 2" : " at (unknown)";
        EXPECT_EQ("% " + one.unnamed + " in_class (unknown)" + point +
                      " for_object 000000001D2C5A40 (unknown)" + InThread("unknown"),
                  DumpedTexts(core)[0]);
        core.SetIdName(1, "Pump");
        core.SetIdName(2, "Drain");
        core.SetIdName(7, "Stuck");
        core.SetClassStateName(1, 7, "Open");
        core.SetMessageName(7, "Hello");
        core.SetObjectName(object, "the pump");
        core.SetThreadName("tester");
        EXPECT_EQ("% " + one.named + " in_class Pump at Drain for_object 000000001D2C5A40" +
                      " (the pump)" + InThread("tester"),
                  DumpedTexts(core)[0]);
    }
}

TEST(KLogger, FirstNameStaysAndStatesBeyond99ReachTheNextClass)
{
    KLogger core, other;
    core.SetIdName(1, "first");
    core.SetIdName(1, "second");
    core.SetClassStateName(4, 100, "state 100 of class 4");
    core.SetClassStateName(5, 0, "too late");
    core.SetClassStateName(0x80000001, 3, "wrapped");
    core.SetObjectName(nullptr, "nothing");
    core.SetThreadName("tester");
    other.SetIdName(2, "other's own");
    core.SetIdName(2, "copied too late");
    core.CopyNamesTo(other);
    core.CopyNamesTo(core);

    other.AddRecord(-25, 0, 0, 5, 1, nullptr);
    other.AddRecord(-25, 3, 0, 0x80000001, 2, nullptr);
    const std::string object = " for_object 0000000000000000 (nothing)" + InThread("tester");
    EXPECT_EQ((std::vector<std::string>{
                  "% State_change to state 100 of class 4 in_class (unknown) at first" + object,
                  "% State_change to wrapped in_class (unknown) at other's own" + object}),
              DumpedTexts(other));
}

TEST(KLogger, WrappedRingStartsAtTheOldestAndEndsWithTheNewest)
{
    KLogger core;
    for (std::uint32_t i = 0; i < ringSize + 3; ++i)
        core.AddRecord(0, i, 0, 0, 0, nullptr);
    const std::vector<DumpedRecord> records = ReadDump(TakeDump(core));
    ASSERT_EQ(ringSize, records.size());
    EXPECT_EQ(0.0, records[0].seconds);
    for (std::uint32_t i = 0; i < ringSize; ++i)
        ASSERT_EQ(i + 3, records[i].numbers[1]);
}

TEST(KLogger, TimesCountUpwardFromTheReferenceEvenBeforeIt)
{
    KLogger core;
    LARGE_INTEGER second;
    QueryPerformanceFrequency(&second);
    core.AddRecord(0, 0, 0, 0, 0, nullptr);
    core.AddRecord(0, 0, 0, 0, 0, nullptr);
    KLogRecord* const ring = *reinterpret_cast<KLogRecord**>(&core); // its first field
    ring[1].time = ring[0].time - second.QuadPart / 4;
    ring[1].threadId = 0;

    const auto format = [&](std::uint32_t index, std::uint32_t reference) {
        std::string text = "old";
        core.FormatRecord(text, index, reference);
        return text;
    };
    EXPECT_NE(std::string::npos,
              format(1, 0).find(" for_object 0000000000000000 (unknown)\n    -1.750000, 0, "));
    EXPECT_NE(std::string::npos, format(0, 1).find("\n    0.250000, 0, "));
    EXPECT_EQ("", format(2, 0));
    EXPECT_EQ("*OUT OF BOUNDS*", format(ringSize, 0));
}

TEST(KLogger, WritersLoseNothingToOneAnotherAndADumpBesideThemShowsWholeRecords)
{
    KLogger core;
    const std::uint32_t each = 40000;
    std::atomic<int> ready(0);
    const auto write = [&] {
        for (++ready; ready < 3;)
            SwitchToThread();
        for (std::uint32_t i = 0; i < each; ++i)
            core.AddRecord(-7, 1, 2, 3, 4, &core);
    };
    std::thread first(write), second(write);
    core.AddRecord(-7, 1, 2, 3, 4, &core);
    ++ready;
    for (const DumpedRecord& record : ReadDump(TakeDump(core)))
        ASSERT_EQ(7u, record.numbers.size());
    first.join();
    second.join();
    EXPECT_EQ(2 * each + 1, DumpedTexts(core).size());
}
