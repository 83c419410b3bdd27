#include "foundation/MException.h"

#include "diagnostics/MFlowLocation.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/support/Allocations.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/Raised.h"

#include <functional>
#include <memory>

namespace
{

class Uncloneable : public MError
{
    MDynObject* Clone() const override { return MDynObject::Clone(); }
};

int clones = 0;

class Counted : public MError
{
    MDynObject* Clone() const override { return ++clones, new Counted(*this); }
};

DumpedRecord LatestRecord()
{
    return ReadDump(TakeDump(*KLogger::GetModuleLogger())).back();
}

} // namespace

TEST(MException, CopyIsDeepAndDropsEmptyEntriesAndTakingReplaces)
{
    MException original(MError(L"first"));
    original.AddError(Uncloneable());
    EXPECT_EQ(nullptr, original.GetFailure());
    original.AddError(MErrorOutOfMemory());
    EXPECT_EQ(3u, original.GetErrorCount());
    EXPECT_EQ("Out of memory", FailureText(original));
    for (const std::int32_t none : {-1, 1, 3})
        EXPECT_EQ(nullptr, original.GetError(none));
    EXPECT_STREQ(std::exception().what(), original.what());

    const MException copy(original);
    MException temporary(MError(L"new"));
    original.TakeFrom(temporary);
    EXPECT_EQ("new", FailureText(original));
    EXPECT_EQ(1u, original.GetErrorCount());
    EXPECT_EQ("no errors", FailureText(temporary)); // it has no chain any more
    EXPECT_FALSE(temporary.GetError(0) || MException(temporary).GetFailure());
    EXPECT_EQ(2u, copy.GetErrorCount());
    EXPECT_STREQ(L"first", copy.GetError(0)->GetCode().c_str());
    EXPECT_EQ(&MErrorOutOfMemory::dynClass, copy.GetError(1)->GetDynClass());
}

TEST(MException, RaisingAndDismissingStandInTheLogAndCostTwoClones)
{
    static MFlowLocation location(L"ExceptionTester", L"Raise");
    Counted error;
    error.AddParameter(L"old", 1);
    location.SetLine(99).RaiseRootError(error, L"BrandNew");
    const DumpedRecord raised = LatestRecord();
    EXPECT_EQ(0u, raised.text.find("% Root_error BrandNew in_class "));
    EXPECT_EQ(99, raised.numbers[2]);
    error.AddParameter(L"n", 1);
    EXPECT_EQ("ExceptionTester.Raise:BrandNew n=1", Raised([&] { location.Throw(error); }));
    EXPECT_EQ(2, clones);
    EXPECT_EQ("Out of memory", Raised(RaiseOutOfMemory));

    location.SetLine(12).DismissError(MException(error));
    const DumpedRecord dismissed = LatestRecord();
    EXPECT_EQ(0u, dismissed.text.find("% Dismissed_error"));
    EXPECT_EQ(12, dismissed.numbers[2]);
}

TEST(MException, LackOfMemoryTakesThePlaceOfWhatWasToBeRaised)
{
    MError error(L"A.B:C");
    error.AddParameter(L"name", L"value");
    const MException exception(error);
    const auto badAlloc = [](ShortageOutcome outcome) {
        EXPECT_EQ(ShortageOutcome::RaisedBadAlloc, outcome);
    };
    const auto copy = [&] { MException(MException(exception)); };
    const auto throwIt = [&] { Raised([&] { ThrowException(exception); }); };
    ForEachFailingAllocation(AllocationFailure::ThrowsForGood, copy, badAlloc);
    ForEachFailingAllocation(AllocationFailure::ThrowsForGood, throwIt, badAlloc);
    ForEachFailingAllocation(
        AllocationFailure::ThrowsForGood, [] { Raised(RaiseOutOfMemory); }, badAlloc);

    // The list of the chain, and the object of a clone, may answer null instead.
    std::unique_ptr<MException> made;
    const auto make = [&] { made.reset(new MException(MError())); };
    RunShortOfMemory(AllocationFailure::AnswersNull, 2, make);
    made->AddError(error);
    EXPECT_EQ(0u, MException(*made).GetErrorCount());
    RunShortOfMemory(AllocationFailure::AnswersNull, 3, make);
    EXPECT_EQ(1u, made->GetErrorCount());
    EXPECT_EQ(nullptr, made->GetError(0));
}
