#include "foundation/MString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace
{

void ExpectText(const wchar_t* expected, const MString& text)
{
    EXPECT_STREQ(expected, text.c_str());
    EXPECT_EQ(static_cast<std::int32_t>(std::wstring(expected).size()), text.GetLength());
}

void ExpectNoBuffer(const MString& text)
{
    ExpectText(L"", text);
    EXPECT_EQ(0, text.GetCapacity());
}

} // namespace

TEST(MString, NothingGivesTheEmptyStringWithoutBuffer)
{
    const wchar_t* const none = nullptr;
    ExpectNoBuffer(MString());
    ExpectNoBuffer(MString(none));
    ExpectNoBuffer(MString(L""));
    ExpectNoBuffer(MString(MString()));
    MString appended;
    appended += MString();
    ExpectNoBuffer(appended);
}

TEST(MString, AssignmentFitsExactly)
{
    MString text(L"a long text");
    text = MString(L"abc");
    ExpectText(L"abc", text);
    EXPECT_EQ(3, text.GetCapacity());
    const MString& self = text;
    text = self;
    ExpectText(L"abc", text);
    const MString empty;
    text = empty;
    ExpectNoBuffer(text);
}

TEST(MString, MovesLeaveTheSourceEmpty)
{
    MString source(L"abc");
    MString target(std::move(source));
    ExpectText(L"abc", target);
    ExpectNoBuffer(source); // NOLINT: that is the point
    source = std::move(target);
    ExpectText(L"abc", source);
    ExpectNoBuffer(target); // NOLINT
}

TEST(MString, AppendedToItselfDoubles)
{
    MString text(L"ab");
    text += text;
    text += text;
    ExpectText(L"abababab", text);
    text.Reserve(100);
    text += text;
    ExpectText(L"abababababababab", text);
    EXPECT_EQ(108, text.GetCapacity());
}

TEST(MString, OrderIsByUnitWithTheEmptyStringFirst)
{
    MString emptied(L"x");
    emptied.GetBuffer(0, true);
    EXPECT_EQ(0, MString::Compare(MString(), emptied));
    EXPECT_EQ(-1, MString::Compare(emptied, L"A"));
    EXPECT_EQ(1, MString::Compare(L"A", MString()));
    EXPECT_EQ(-1, MString::Compare(L"Z", L"a"));
    EXPECT_EQ(1, MString::Compare(L"\xFFFF", L"\x7FFF"));
    EXPECT_EQ(-1, MString::Compare(L"ab", L"abc"));
    EXPECT_EQ(0, MString::Compare(L"abc", L"abc"));
}

TEST(MString, FindLooksForWholeNeedlesOnly)
{
    const MString text(L"ababac");
    EXPECT_EQ(0, text.Find(L"aba"));
    EXPECT_EQ(2, text.Find(L"aba", 1));
    EXPECT_EQ(3, text.Find(L"bac", 0));
    EXPECT_EQ(-1, text.Find(L"acx"));
    EXPECT_EQ(-1, text.Find(L""));
    EXPECT_EQ(-1, text.Find(L"ababacc"));
    EXPECT_EQ(-1, text.Find(L"a", 6));
    EXPECT_EQ(-1, MString().Find(L"a"));
}

TEST(MString, MidStopsAtTheEnds)
{
    const MString text(L"abcdef");
    ExpectText(L"cd", text.Mid(2, 2));
    ExpectText(L"cdef", text.Mid(2));
    ExpectText(L"f", text.Mid(5, 7));
    ExpectNoBuffer(text.Mid(6));
    ExpectNoBuffer(text.Mid(2, 0));
    ExpectNoBuffer(text.Mid(2, -1));
}

TEST(MString, FormatReplacesTheTextItMayUse)
{
    MString text(L"abc");
    text.Format(L"%ls-%d", text.c_str(), 42);
    ExpectText(L"abc-42", text);
    EXPECT_EQ(6, text.GetCapacity());
    text.Format(L"%ls", L"");
    ExpectNoBuffer(text);
}

TEST(MString, BufferIsKeptShrunkOrGrown)
{
    MString text(L"abcdef");
    const wchar_t* const before = text.c_str();
    EXPECT_EQ(before, text.GetBuffer(3, false));
    ExpectText(L"abcdef", text);

    text.GetBuffer(3, true);
    ExpectText(L"abc", text);
    EXPECT_EQ(3, text.GetCapacity());

    text.GetBuffer(5, false);
    EXPECT_STREQ(L"abc", text.c_str());
    EXPECT_EQ(5, text.GetLength());

    MString fresh;
    EXPECT_STREQ(L"", fresh.GetBuffer(4, false));
    fresh.GetBuffer(-7, true);
    EXPECT_EQ(0, fresh.GetLength());
}

TEST(MString, ShrinkingKeepsWhatWasWrittenIntoReservedRoom)
{
    MString text;
    text.Reserve(10);
    std::copy_n(L"hello", 6, text.GetBuffer(10, false));
    text.GetBuffer(5, true);
    ExpectText(L"hello", text);
}
