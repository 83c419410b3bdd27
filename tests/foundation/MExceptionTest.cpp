#include "foundation/MException.h"

#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

namespace
{

class Uncloneable : public MError
{
    MDynObject* Clone() const override { return MDynObject::Clone(); }
};

DumpedRecord LatestRecord()
{
    return ReadDump(TakeDump(*MFlowLogger::GetInstance()->GetImplementation())).back();
}

} // namespace

TEST(MException, CopyIsDeepAndDropsEmptyEntriesAndTakingReplaces)
{
    MException original(MError(L"first"));
    original.AddError(Uncloneable());
    original.AddError(MErrorOutOfMemory());
    EXPECT_EQ(3u, original.GetErrorCount());
    EXPECT_EQ("Out of memory", FailureText(original));
    for (const std::int32_t none : {-1, 1, 3})
        EXPECT_EQ(nullptr, original.GetError(none));

    const MException copy(original);
    MException temporary(MError(L"new"));
    original.TakeFrom(temporary);
    EXPECT_EQ("new", FailureText(original));
    EXPECT_EQ(1u, original.GetErrorCount());
    EXPECT_EQ("no errors", FailureText(MException(temporary))); // it has no chain any more
    EXPECT_EQ(2u, copy.GetErrorCount());
    EXPECT_STREQ(L"first", copy.GetError(0)->GetCode().c_str());
    EXPECT_EQ(&MErrorOutOfMemory::dynClass, copy.GetError(1)->GetDynClass());
}

TEST(MException, RaisingAndDismissingStandInTheLog)
{
    static MFlowLocation location(L"ExceptionTester", L"Raise");
    MError error(L"old");
    error.AddParameter(L"old", 1);
    location.SetLine(99).RaiseRootError(error, L"BrandNew");
    const DumpedRecord raised = LatestRecord();
    EXPECT_EQ(0u, raised.text.find("% Root_error BrandNew in_class "));
    EXPECT_EQ(99, raised.numbers[2]);
    error.AddParameter(L"n", 1);
    EXPECT_EQ("ExceptionTester.Raise:BrandNew n=1", Raised([&] { location.Throw(error); }));
    EXPECT_EQ("Out of memory", Raised(RaiseOutOfMemory));

    location.SetLine(12).DismissError(MException(error));
    const DumpedRecord dismissed = LatestRecord();
    EXPECT_EQ(0u, dismissed.text.find("% Dismissed_error"));
    EXPECT_EQ(12, dismissed.numbers[2]);
}
