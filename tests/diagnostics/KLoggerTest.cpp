#include "diagnostics/KLogger.h"

#include "tests/support/DumpedRecord.h"
#include "tests/support/NullObject.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include <windows.h>

namespace
{

const std::uint32_t ringSize = 0x20000;

std::string WithThread(const std::string& text, const char* thread = "unknown")
{
    return text + " in_thread " + std::to_string(GetCurrentThreadId()) + " (" + thread + ")";
}

} // namespace

TEST(KLogger, RecordShowsItsNumbersSignedBelowTheHeader)
{
    KLogger core;
    const std::string empty = TakeDump(core);
    EXPECT_EQ(0u, empty.find("%% Reference time: "));
    EXPECT_LT(empty.find(" is approximately "), empty.find("ms past "));
    EXPECT_EQ(empty.size() - 4, empty.find("\n%%\n"));

    core.AddRecord(-14, 0xFFFFFFFF, 32, 0x80000000, 7, &core);
    const DumpedRecord record = ReadDump(TakeDump(core)).at(0);
    EXPECT_EQ(0.0, record.seconds);
    const std::int64_t object = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(&core));
    EXPECT_EQ(
        (std::vector<std::int64_t>{-14, -1, 32, -2147483648LL, 7, object, GetCurrentThreadId()}),
        record.numbers);
}

TEST(KLogger, NamesNobodyGaveShowAsUnknown)
{
    const std::string nobody = " in_class (unknown) at (unknown) for_object 0000000000000000 "
                               "(unknown)";
    const std::pair<std::int32_t, std::string> cases[] = {
        {-105, "% Root_error (unknown)" + nobody},
        {-101, "% Warning (unknown)" + nobody},
        {-25, "% State_change to state_7" + nobody},
        {-21, "% Message_send 7" + nobody},
        {-1, "% Timing_point" + nobody},
        {0, "% Timing_point (7, -8) in_class (unknown) at_point 6 for_object 0000000000000000 "
            "(unknown)"},
        {5, "% unknown event" + nobody},
    };
    for (const auto& one : cases) {
        KLogger core;
        core.AddRecord(one.first, 7, static_cast<std::uint32_t>(-8), 5, 6, nullptr);
        EXPECT_EQ(std::vector<std::string>{WithThread(one.second)}, DumpedTexts(core));
    }
}

TEST(KLogger, NamesShowWhereTheyAreKnown)
{
    KLogger core;
    const void* const object = reinterpret_cast<const void*>(0x1D2C5A40);
    core.SetIdName(1, "Pump");
    core.SetIdName(2, "Drain");
    core.SetIdName(3, "PumpBlocked");
    core.SetClassStateName(1, 7, "Open");
    core.SetMessageName(9, "Hello");
    core.SetObjectName(object, "the pump");
    core.SetThreadName("tester");

    core.AddRecord(-103, 3, 0, 1, 2, object);
    core.AddRecord(-25, 7, 0, 1, 2, object);
    core.AddRecord(-21, 9, 0, 1, 2, object);
    core.AddRecord(0, 3, 4, 1, 2, object);

    const std::string rest = " in_class Pump at Drain for_object 000000001D2C5A40 (the pump)";
    EXPECT_EQ(
        (std::vector<std::string>{WithThread("% Dismissed_error PumpBlocked" + rest, "tester"),
                                  WithThread("% State_change to Open" + rest, "tester"),
                                  WithThread("% Message_send Hello" + rest, "tester"),
                                  WithThread("% Timing_point (3, 4)" + rest, "tester")}),
        DumpedTexts(core));
}

TEST(KLogger, FirstNameStaysAndStatesBeyond99ReachTheNextClass)
{
    KLogger core;
    KLogger other;
    core.SetIdName(1, "first");
    core.SetIdName(1, "second");
    core.SetClassStateName(4, 100, "state 100 of class 4");
    core.SetClassStateName(5, 0, "too late");
    core.SetClassStateName(0x80000001, 3, "wrapped");
    other.SetIdName(2, "other's own");
    core.SetIdName(2, "copied too late");
    core.CopyNamesTo(other);
    core.CopyNamesTo(core);

    other.AddRecord(-25, 0, 0, 5, 1, nullptr);
    other.AddRecord(-25, 3, 0, 0x80000001, 2, nullptr);
    const std::vector<std::string> texts = DumpedTexts(other);
    EXPECT_EQ(0u, texts.at(0).find(
                      "% State_change to state 100 of class 4 in_class (unknown) at first "));
    EXPECT_EQ(0u, texts.at(1).find("% State_change to wrapped in_class (unknown) at other's own "));
}

TEST(KLogger, WrappedRingStartsAtTheOldestAndEndsWithTheNewest)
{
    KLogger core;
    for (std::uint32_t i = 0; i < ringSize + 3; ++i)
        core.AddRecord(0, i, 0, 0, 0, nullptr);

    const std::vector<DumpedRecord> records = ReadDump(TakeDump(core));
    ASSERT_EQ(ringSize, records.size());
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

    std::string text;
    core.FormatRecord(text, 1, 0);
    EXPECT_NE(std::string::npos, text.find("\n    -1.750000, 0, "));
    EXPECT_EQ(std::string::npos, text.find("in_thread"));
    core.FormatRecord(text, 0, 1);
    EXPECT_NE(std::string::npos, text.find("\n    0.250000, 0, "));
    core.FormatRecord(text, 2, 0);
    EXPECT_EQ("", text);
    core.FormatRecord(text, ringSize, 0);
    EXPECT_EQ("*OUT OF BOUNDS*", text);
}

TEST(KLogger, NullCoreIgnoresEverything)
{
    KLogger* const none = NullObject<KLogger>();
    KLogger other;
    none->AddRecord(0, 0, 0, 0, 0, nullptr);
    none->SetIdName(1, "name");
    none->SetMessageName(1, "name");
    none->SetClassStateName(1, 1, "name");
    none->SetObjectName(nullptr, "name");
    none->SetThreadName("name");
    none->CopyNamesTo(other);
    EXPECT_EQ("", TakeDump(*none));
}

TEST(KLogger, DumpBesideWritersShowsWholeRecords)
{
    KLogger core;
    std::atomic<int> writing(0);
    std::atomic<bool> done(false);
    const auto write = [&] {
        core.AddRecord(-7, 1, 2, 3, 4, &core);
        for (++writing; !done;)
            core.AddRecord(-7, 1, 2, 3, 4, &core);
    };
    std::thread first(write);
    std::thread second(write);
    while (writing < 2)
        SwitchToThread();
    const std::vector<DumpedRecord> records = ReadDump(TakeDump(core));
    done = true;
    first.join();
    second.join();
    EXPECT_FALSE(records.empty());
    for (const DumpedRecord& record : records) {
        ASSERT_EQ(7u, record.numbers.size());
        ASSERT_NE(std::string::npos, record.text.find(" in_class (unknown) at "));
    }
}
