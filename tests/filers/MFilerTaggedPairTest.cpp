#include "filers/MFilerTaggedPair.h"

#include "tests/filers/ScriptedFilers.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

/// Where a virtual function stands among those of its class: the table comes first in a pointer to
/// one, as an offset that is marked by an odd number.
template <class Function>
std::size_t SlotOf(Function function)
{
    std::size_t offset = 0;
    std::memcpy(&offset, &function, sizeof offset);
    return (offset - 1) / sizeof(void*);
}

} // namespace

// The destructor has two slots in front of them.
TEST(MFilerTaggedPair, FilersHaveTheirSlotsInOrder)
{
    EXPECT_EQ(2u, SlotOf(&IOutFilerTagged::WriteChar));
    EXPECT_EQ(3u, SlotOf(&IOutFilerTagged::WriteString));
    EXPECT_EQ(8u, SlotOf(&IOutFilerTagged::WriteUInt16));
    EXPECT_EQ(12u, SlotOf(&IOutFilerTagged::BeginGroup));
    EXPECT_EQ(14u, SlotOf(&IOutFilerTagged::WriteDocument));
    EXPECT_EQ(2u, SlotOf(&IInFilerTagged::ReadString));
    EXPECT_EQ(3u, SlotOf(&IInFilerTagged::ReadChar));
    EXPECT_EQ(8u, SlotOf(&IInFilerTagged::ReadUInt16));
    EXPECT_EQ(12u, SlotOf(&IInFilerTagged::BeginGroup));
    EXPECT_EQ(14u, SlotOf(&IInFilerTagged::ReadDocument));
}

TEST(MFilerTaggedPair, GroupsGoToBothTheReaderFirst)
{
    Script script;
    ScriptedInFiler in(script);
    ScriptedOutFiler out(script);
    MFilerTaggedPair filer(&in, &out);
    EXPECT_TRUE(filer.BeginGroup(L"a"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_EQ(L"in(a out(a in) out) ", script.TakeCalls());

    script.FailAt(1);
    EXPECT_FALSE(filer.BeginGroup(L"a"));
    script.FailAt(2);
    EXPECT_FALSE(filer.EndGroup());
    EXPECT_EQ(L"in(a out(a in) out) ", script.TakeCalls());
}

TEST(MFilerTaggedPair, ValuesGoToTheOneOfTheirDirection)
{
    Script script;
    ScriptedInFiler in(script);
    ScriptedOutFiler out(script);
    MString text;
    unsigned int number = 5;
    MFilerTaggedPair reader(&in, nullptr);
    EXPECT_TRUE(reader.ReadString(L"s", text, L"default"));
    EXPECT_STREQ(L"default", text.c_str());
    EXPECT_FALSE(reader.ReadUInt32(L"n", &number, 7)); // there is no document
    EXPECT_EQ(7u, number);
    EXPECT_FALSE(reader.WriteString(L"s", L"text") || reader.WriteUInt32(L"n", 8));

    MFilerTaggedPair writer(nullptr, &out);
    EXPECT_TRUE(writer.WriteString(L"s", L"text") && writer.WriteUInt32(L"n", 8));
    EXPECT_FALSE(writer.ReadString(L"s", text, L"other") || writer.ReadUInt32(L"n", &number, 9));
    EXPECT_STREQ(L"default", text.c_str());
    EXPECT_EQ(7u, number);
    EXPECT_EQ(L"in:s out:s=text ", script.TakeCalls());
}
