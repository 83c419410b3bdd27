#include "filers/MFilerTaggedPair.h"

#include "filers/IInFilerTagged.h"
#include "filers/IOutFilerTagged.h"
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

// The destructor has two slots.
const std::size_t firstSlot = 2;

} // namespace

TEST(IOutFilerTagged, OperationsStandInTheirSlots)
{
    typedef IOutFilerTagged Filer;
    const std::size_t slots[] = {
        SlotOf(&Filer::WriteChar),    SlotOf(&Filer::WriteString), SlotOf(&Filer::WriteDouble),
        SlotOf(&Filer::WriteFloat),   SlotOf(&Filer::WriteBool),   SlotOf(&Filer::WriteByte),
        SlotOf(&Filer::WriteUInt16),  SlotOf(&Filer::WriteInt16),  SlotOf(&Filer::WriteUInt32),
        SlotOf(&Filer::WriteInt32),   SlotOf(&Filer::BeginGroup),  SlotOf(&Filer::EndGroup),
        SlotOf(&Filer::WriteDocument)};
    for (std::size_t i = 0; i < 13; ++i)
        EXPECT_EQ(firstSlot + i, slots[i]);
}

TEST(IInFilerTagged, OperationsStandInTheirSlots)
{
    typedef IInFilerTagged Filer;
    const std::size_t slots[] = {
        SlotOf(&Filer::ReadString),  SlotOf(&Filer::ReadChar),   SlotOf(&Filer::ReadDouble),
        SlotOf(&Filer::ReadFloat),   SlotOf(&Filer::ReadBool),   SlotOf(&Filer::ReadByte),
        SlotOf(&Filer::ReadUInt16),  SlotOf(&Filer::ReadInt16),  SlotOf(&Filer::ReadUInt32),
        SlotOf(&Filer::ReadInt32),   SlotOf(&Filer::BeginGroup), SlotOf(&Filer::EndGroup),
        SlotOf(&Filer::ReadDocument)};
    for (std::size_t i = 0; i < 13; ++i)
        EXPECT_EQ(firstSlot + i, slots[i]);
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
    MFilerTaggedPair filer(&in, &out);
    MString text;
    unsigned int number = 0;
    EXPECT_TRUE(filer.ReadString(L"s", text, L"default"));
    EXPECT_TRUE(filer.ReadUInt32(L"n", &number, 7));
    EXPECT_TRUE(filer.WriteString(L"s", L"text"));
    EXPECT_TRUE(filer.WriteUInt32(L"n", 8));
    EXPECT_EQ(L"in:s out:s=text out:n=8 ", script.TakeCalls());
    EXPECT_STREQ(L"default", text.c_str());
    EXPECT_EQ(7u, number);
}

TEST(MFilerTaggedPair, AbsentFilerTakesNoValues)
{
    MFilerTaggedPair filer(nullptr, nullptr);
    MString text;
    unsigned int number = 5;
    EXPECT_TRUE(filer.BeginGroup(L"a"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_FALSE(filer.ReadString(L"s", text, L"default"));
    EXPECT_FALSE(filer.ReadUInt32(L"n", &number, 7));
    EXPECT_FALSE(filer.WriteString(L"s", L"text"));
    EXPECT_FALSE(filer.WriteUInt32(L"n", 8));
    EXPECT_EQ(5u, number);
}
