#include "diagnostics/MKLoggerAdapter.h"

#include "diagnostics/FlowEvent.h"
#include "diagnostics/FlowId.h"
#include "diagnostics/KLogger.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "tests/support/DumpedRecord.h"

#include <gtest/gtest.h>

namespace
{

typedef std::vector<std::int64_t> Numbers;

/// A logger of another kind.
struct ForeignLogger : MFlowLoggerImplementation {
    using Number = std::uint32_t;
    void LogEvent(Number, Number, Number, Number, Number, const void*) override {}
    void DumpToStream(std::ostream&) override {}
    bool DumpToFile() override { return false; }
    void AttachLogger(MFlowLoggerImplementation*) override {}
};

/// A logger on a core of its own.
struct Log {
    void LogOne() { adapter.LogEvent(FlowEventStateChange, 1, 2, 3, 4, nullptr); }

    Numbers Kinds()
    {
        Numbers kinds;
        for (const DumpedRecord& record : ReadDump(TakeDump(core)))
            kinds.push_back(record.numbers[0]);
        return kinds;
    }

    PassingCore core;
    MKLoggerAdapter adapter{&core};
    MFlowLogger logger{&adapter};
};

} // namespace

TEST(MKLoggerAdapter, EventIndexesBecomeKinds)
{
    Log log;
    for (std::uint32_t index = FlowEventFirstPoint; index <= FlowEventMessageReceive; ++index)
        log.adapter.LogEvent(index, 0, 0, 0, 0, nullptr);
    EXPECT_EQ((Numbers{0, -105, -104, -103, -14, -13, -25, -7, -8, 0, -102, -101, -21, -20}),
              log.Kinds());
}

TEST(MKLoggerAdapter, AttachedLogReceivesEventsAndNames)
{
    Log ours, theirs;
    ours.adapter.RegisterClassName(3, L"Before");
    ours.logger.Attach(&theirs.logger);
    ours.adapter.RegisterFunctionName(3, 4, L"Aft\x0165r"); // an 'e', but for its high bits
    ours.adapter.RegisterStateName(3, 1, L"Open");
    ours.adapter.RegisterObjectName(nullptr, L"nothing");
    ours.adapter.RegisterThreadName(L"tester");
    ours.adapter.RegisterErrorName(5, L"Stuck");
    ours.adapter.RegisterMessageName(6, L"Hello");
    ours.LogOne();
    theirs.LogOne();
    ours.adapter.LogEvent(FlowEventRootError, 5, 0, 0, 0, nullptr);
    ours.adapter.LogEvent(FlowEventMessageSend, 6, 0, 0, 0, nullptr);
    EXPECT_EQ((Numbers{-202, -25, -105, -21}), ours.Kinds());
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(&theirs.core),
              ReadDump(TakeDump(ours.core))[0].numbers[5]);
    EXPECT_EQ((Numbers{-202, -25, -25, -105, -21}), theirs.Kinds());
    const std::vector<std::string> texts = DumpedTexts(theirs.core);
    EXPECT_EQ(0u, texts[1].find("% State_change to Open in_class Before at After"
                                " for_object 0000000000000000 (nothing) in_thread "));
    EXPECT_NE(std::string::npos, texts[1].find(" (tester)"));
    EXPECT_EQ(0u, texts[3].find("% Root_error Stuck in_class "));
    EXPECT_EQ(0u, texts[4].find("% Message_send Hello in_class "));
}

TEST(MKLoggerAdapter, NullAndForeignLoggersDetachOnceAndAnotherReplacesMayItBeItself)
{
    Log ours, theirs, third;
    ForeignLogger foreign;
    MFlowLogger foreigner(&foreign);
    MFlowLogger* volatile none = nullptr;
    none->Attach(&theirs.logger);
    ours.logger.Attach(none);
    ours.logger.Attach(&third.logger);
    ours.logger.Attach(&ours.logger);
    ours.LogOne();
    ours.logger.Attach(&theirs.logger);
    ours.logger.Attach(&foreigner);
    ours.logger.Attach(none);
    ours.LogOne();
    EXPECT_EQ((Numbers{-202, -202, -202, -25, -25, -202, -201, -25}), ours.Kinds());
    EXPECT_EQ((Numbers{-202, -201}), theirs.Kinds());
    EXPECT_EQ((Numbers{-202}), third.Kinds());
}

TEST(MFlowLocation, RecordsSayWhatWhereAndForWhomAndScopesCloseAsTheyWereOpened)
{
    const wchar_t className[] = L"FlowTester";
    GetDiagnosticsRegistry()->RegisterClassName(FlowId(className), className);
    MFlowLocation location(className, L"Trace");
    location.SetObject(&location).LogConstruction();
    location.SetLine(77).LogDestruction();
    location.LogStateChange(2, 9);
    location.LogTimingPoint(5, 6);
    {
        const MFlowScope unopened, scope(location, 1, 2);
        location.SetObject(nullptr);
    }

    std::vector<Numbers> seen;
    const std::vector<DumpedRecord> records = ReadDump(TakeDump(*KLogger::GetModuleLogger()));
    EXPECT_EQ(reinterpret_cast<std::intptr_t>(&location), records.back().numbers[5]);
    for (const DumpedRecord& record : records)
        if (reinterpret_cast<const void*>(record.numbers[5]) == &location) {
            EXPECT_NE(std::string::npos, record.text.find(" in_class FlowTester at Trace "));
            seen.emplace_back(record.numbers.begin(), record.numbers.begin() + 3);
        }
    EXPECT_EQ((std::vector<Numbers>{
                  {-14, 0, -1}, {-13, 0, 77}, {-25, 2, 9}, {0, 5, 6}, {-7, 1, 2}, {-8, 1, 2}}),
              seen);
}
