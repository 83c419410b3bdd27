// The dumps of the recorder itself, read back.

#include "diagnostics/KLogger.h"
#include "fuzz/TraceRules.h"
#include "tests/support/LeakCheck.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/showing/text/Description.h"
#include "viewer/showing/trace/TraceEvents.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace
{

const std::uint32_t ringSize = 0x20000;

Dump DumpOf(KLogger& core)
{
    std::ostringstream stream;
    core.WriteDump(stream);
    return ReadText(stream.str());
}

} // namespace

TEST(RecorderDump, OfEveryKindReadsBackAsItWasRecorded)
{
    LeakCheck::Skip(); // a core is never freed
    KLogger& core = *new KLogger;
    core.SetThreadName("main (1)");
    core.SetIdName(0x80000001, "Pump");
    core.SetIdName(0x80000002, "Drain");
    core.SetIdName(3, "RunsDry");
    core.SetMessageName(3, "Start");
    core.SetClassStateName(0x80000001, 3, "Running at last");
    core.SetObjectName(&core, "core");

    const std::int32_t firstKind = -202;
    for (std::int32_t kind = firstKind; kind <= 1; ++kind) {
        core.AddRecord(kind, 3, 0xFFFFFFFF, 0x80000001, 0x80000002, &core);
        core.AddRecord(kind, 4, 5, 6, 7, nullptr);
    }

    const Dump dump = DumpOf(core);
    EXPECT_EQ(std::vector<std::string>(), dump.findings.Sentences());
    ASSERT_EQ(2u * 204, dump.records.size());
    for (std::size_t i = 0; i < dump.records.size(); ++i) {
        const DumpRecord& record = dump.records[i];
        EXPECT_EQ(firstKind + static_cast<int>(i / 2), record.kind);
        EXPECT_EQ(i % 2 == 0 ? -1 : 5, record.param2);
        EXPECT_EQ(i % 2 == 0 ? "core" : "", dump.names.Object(record));
        EXPECT_EQ("main (1)", dump.names.Thread(record.threadId));
    }
    const auto event = [&](std::int32_t kind, int which) {
        return Description::Event(dump.records[2 * (kind - firstKind) + which], dump.names);
    };
    EXPECT_EQ("Log_module_added (core)", Description::Whole(dump.records[0], dump.names));
    EXPECT_EQ("Pump.Drain (core)", Description::PlaceAndObject(dump.records[4], dump.names));
    EXPECT_EQ("Root_error RunsDry", event(-105, 0));
    EXPECT_EQ("State_change to Running at last", event(-25, 0));
    EXPECT_EQ("State_change to state_4", event(-25, 1));
    EXPECT_EQ("Message_send Start", event(-21, 0));
    EXPECT_EQ("Message_send 4", event(-21, 1));
}

TEST(RecorderDump, OfAWrappedRingLacksOnlyWhatTheRingHasLost)
{
    LeakCheck::Skip();
    KLogger& core = *new KLogger;
    const auto serve = [&core] {
        core.AddRecord(-7, 0, 0, 1, 2, nullptr);
        for (std::uint32_t i = 0; i < ringSize / 3; ++i) {
            core.AddRecord(-7, i, 0, 1, 3, &core);
            core.AddRecord(-8, i, 0, 1, 3, &core);
        }
        core.AddRecord(-8, 0, 0, 1, 2, nullptr);
    };
    std::thread other(serve);
    serve();
    other.join();

    Recordings recordings = RecordingsOf(DumpOf(core));
    Dump& dump = recordings[0].dump;
    EXPECT_EQ(ringSize, dump.records.size());
    // A thread that has lost an odd number of records lacks the begin of its outer scope, one that
    // has lost an even number that of an inner one too. Together they have lost an even number.
    const std::size_t lostBegins = dump.findings.lostBegins;
    EXPECT_TRUE(lostBegins == 2 || lostBegins == 4) << lostBegins;
    dump.findings.lostBegins = 0;
    EXPECT_EQ(std::vector<std::string>(), dump.findings.Sentences());
    EXPECT_EQ("", BrokenTraceRule(TraceEvents::Compose(recordings), ringSize));
    EXPECT_NE("(unknown)", dump.WallClockAt(0));
}
