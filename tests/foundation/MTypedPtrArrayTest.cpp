#include "foundation/MTypedPtrArray.h"

#include "tests/support/Allocations.h"

typedef MTypedPtrArray<MString, const MString&> StringArray;

TEST(MTypedPtrArray, GrowsByASlotAFactorOrToAMinimumAndKeepsItsSlots)
{
    StringArray array;
    for (const wchar_t* text : {L"a", L"b", L"c"}) {
        const std::int32_t index = array.Add(text);
        EXPECT_EQ(index + 1, array.GetAllocated());
    }
    array.RemoveAt(1);
    EXPECT_STREQ(L"c", array.GetAt(1).c_str());
    EXPECT_STREQ(L"", array.GetAt(2).c_str()); // an empty slot is filled on demand
    EXPECT_EQ(2, array.Add(L"d"));
    EXPECT_EQ(3, array.GetAllocated());
    array.RemoveAll();
    EXPECT_EQ(0, array.Add(L"again"));
    array.SetGrowFactor(2.5f);
    array.Grow(0);
    EXPECT_EQ(7, array.GetAllocated());
    array.Grow(100);
    EXPECT_EQ(100, array.GetAllocated());
}

TEST(MTypedPtrArray, LackOfMemoryIsRaisedAndAddsNothing)
{
    const MString value(L"text");
    for (const AllocationFailure how :
         {AllocationFailure::Throws, AllocationFailure::AnswersNull}) {
        StringArray array;
        const auto add = [&] {
            array.Resize(0);
            array.Add(value);
        };
        ForEachFailingAllocation(how, add, [&](ShortageOutcome outcome) {
            EXPECT_EQ(ShortageOutcome::RaisedMException, outcome);
            EXPECT_EQ(0, array.GetCount());
        });
    }
}
