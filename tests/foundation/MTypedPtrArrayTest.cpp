#include "foundation/MTypedPtrArray.h"

#include <gtest/gtest.h>

typedef MTypedPtrArray<MString, const MString&> StringArray;

TEST(MTypedPtrArray, GrowsOneSlotAtATimeUnlessAFactorOrAMinimumIsLarger)
{
    StringArray array;
    for (std::int32_t i = 0; i < 2; ++i) {
        EXPECT_EQ(i, array.Add(L"a"));
        EXPECT_EQ(i + 1, array.GetAllocated());
    }
    array.SetGrowFactor(2.5f);
    array.Grow(0);
    EXPECT_EQ(5, array.GetAllocated());
    array.Grow(100);
    EXPECT_EQ(100, array.GetAllocated());
}

TEST(MTypedPtrArray, RemovingMovesTheRestDownAndKeepsTheSlots)
{
    StringArray array;
    for (const wchar_t* text : {L"a", L"b", L"c"})
        array.Add(text);
    array.RemoveAt(1);
    EXPECT_EQ(2, array.GetCount());
    EXPECT_EQ(3, array.GetAllocated());
    EXPECT_STREQ(L"c", array.GetAt(1).c_str());
    EXPECT_STREQ(L"", array.GetAt(2).c_str()); // an empty slot is filled on demand
    array.RemoveAll();
    EXPECT_EQ(0, array.GetCount());
    EXPECT_EQ(0, array.Add(L"again"));
}
