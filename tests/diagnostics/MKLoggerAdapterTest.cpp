#include "diagnostics/MKLoggerAdapter.h"

#include "diagnostics/FlowEvent.h"
#include "diagnostics/FlowId.h"
#include "diagnostics/KLogger.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/ForeignLogger.h"
#include "tests/support/NullObject.h"

#include <gtest/gtest.h>

namespace
{

const wchar_t className[] = L"FlowTester";

struct LogPair : testing::Test {
    KLogger ourCore;
    KLogger theirCore;
    MKLoggerAdapter ours{&ourCore};
    MKLoggerAdapter theirs{&theirCore};

    static void LogOne(MKLoggerAdapter& adapter)
    {
        adapter.LogEvent(FlowEventTimingPoint, 1, 2, 3, 4, nullptr);
    }
};

typedef std::vector<std::int64_t> Numbers;

Numbers Kinds(KLogger& core)
{
    Numbers kinds;
    for (const DumpedRecord& record : ReadDump(TakeDump(core)))
        kinds.push_back(record.numbers[0]);
    return kinds;
}

std::vector<DumpedRecord> ModuleRecordsOf(const void* object)
{
    const auto address = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(object));
    std::vector<DumpedRecord> found;
    for (const DumpedRecord& record :
         ReadDump(TakeDump(*MFlowLogger::GetInstance()->GetImplementation())))
        if (record.numbers[5] == address)
            found.push_back(record);
    return found;
}

/// The kind and the two parameters.
Numbers FirstNumbers(const DumpedRecord& record)
{
    return Numbers(record.numbers.begin(), record.numbers.begin() + 3);
}

} // namespace

TEST_F(LogPair, EventIndexesBecomeKinds)
{
    for (std::uint32_t index = FlowEventFirstPoint; index <= FlowEventMessageReceive; ++index)
        ours.LogEvent(index, 0, 0, 0, 0, nullptr);
    EXPECT_EQ((Numbers{0, -105, -104, -103, -14, -13, -25, -7, -8, 0, -102, -101, -21, -20}),
              Kinds(ourCore));
}

TEST_F(LogPair, AttachedLogReceivesEventsAndNames)
{
    ours.RegisterClassName(3, L"Before");
    ours.AttachLogger(&theirs);
    ours.RegisterFunctionName(3, 4,
                              L"Af\x0174"
                              L"er"); // cut to its low bits: 't'
    LogOne(ours);
    LogOne(theirs);

    EXPECT_EQ((Numbers{-202, 0}), Kinds(ourCore));
    EXPECT_EQ((Numbers{-202, 0, 0}), Kinds(theirCore));
    EXPECT_EQ(0u,
              DumpedTexts(theirCore)[1].find("% Timing_point (1, 2) in_class Before at After "));
}

TEST_F(LogPair, NullAndForeignLoggersDetachOnceAndAnAttachedOneReplaces)
{
    ForeignLogger foreign;
    KLogger thirdCore;
    MKLoggerAdapter third(&thirdCore);
    ours.AttachLogger(nullptr);
    ours.AttachLogger(&third);
    ours.AttachLogger(&theirs);
    ours.AttachLogger(&foreign);
    ours.AttachLogger(nullptr);
    LogOne(ours);
    EXPECT_EQ((Numbers{-202, -202, -201, 0}), Kinds(ourCore));
    EXPECT_EQ((Numbers{-202, -201}), Kinds(theirCore));
    EXPECT_EQ((Numbers{-202}), Kinds(thirdCore));
}

TEST_F(LogPair, LogAttachedToItselfRecordsTwice)
{
    ours.AttachLogger(&ours);
    LogOne(ours);
    EXPECT_EQ((Numbers{-202, -202, 0, 0}), Kinds(ourCore));
}

TEST_F(LogPair, HolderAttachesWhatAnotherHolds)
{
    MFlowLogger our(&ours);
    MFlowLogger their(&theirs);
    MFlowLogger* const none = NullObject<MFlowLogger>();
    none->Attach(&their);
    our.Attach(&their);
    our.Attach(none);
    EXPECT_EQ((Numbers{-202, -201}), Kinds(theirCore));
}

TEST(MFlowLocation, RecordsSayWhereAndForWhom)
{
    int object = 0;
    MFlowLocation location(className, L"Trace");
    GetDiagnosticsRegistry()->RegisterClassName(FlowId(className), className);
    location.SetObject(&object);
    location.LogConstruction();
    location.SetLine(77).LogDestruction();
    location.LogStateChange(2, 9);
    location.LogTimingPoint(5, 6);

    const std::vector<DumpedRecord> records = ModuleRecordsOf(&object);
    ASSERT_EQ(4u, records.size());
    const Numbers expected[] = {{-14, 0, -1}, {-13, 0, 77}, {-25, 2, 9}, {0, 5, 6}};
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_NE(std::string::npos, records[i].text.find(" in_class FlowTester at Trace "));
        EXPECT_EQ(expected[i], FirstNumbers(records[i]));
    }
}

TEST(MFlowScope, ClosesAsItWasOpenedByReturnAndByException)
{
    int object = 0;
    int other = 0;
    static MFlowLocation location(className, L"Scope");
    try {
        MFlowScope unopened;
        MFlowScope scope(location.SetObject(&object), 1, 2);
        location.SetObject(&other);
        throw 1;
    } catch (int) {
    }
    const std::vector<DumpedRecord> records = ModuleRecordsOf(&object);
    ASSERT_EQ(2u, records.size());
    EXPECT_EQ((Numbers{-7, 1, 2}), FirstNumbers(records[0]));
    EXPECT_EQ((Numbers{-8, 1, 2}), FirstNumbers(records[1]));
    EXPECT_TRUE(ModuleRecordsOf(&other).empty());
}
