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
    ExpectNoBuffer(MString() += MString());
}

TEST(MString, AssignmentFitsExactlyAndAMoveLeavesTheSourceEmpty)
{
    MString text(L"a long text");
    text = MString(L"abc");
    ExpectText(L"abc", text);
    EXPECT_EQ(3, text.GetCapacity());
    const MString& self = text;
    text = self;
    MString target(std::move(text));
    ExpectText(L"abc", target);
    ExpectNoBuffer(text); // NOLINT: that is the point
    text = std::move(target);
    ExpectText(L"abc", text);
    ExpectNoBuffer(target); // NOLINT
    text = static_cast<const MString&>(target);
    ExpectNoBuffer(text);
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
    const wchar_t* const ordered[] = {L"", L"Z", L"a", L"ab", L"abc", L"\x7FFF", L"\xFFFF"};
    for (int a = 0; a < 7; ++a)
        for (int b = 0; b < 7; ++b)
            EXPECT_EQ((a > b) - (a < b), MString::Compare(ordered[a], ordered[b])) << a << b;
}

TEST(MString, FindLooksForWholeNeedlesAndMidStopsAtTheEnds)
{
    const MString text(L"ababac");
    EXPECT_EQ(2, text.Find(L"aba", 1));
    EXPECT_EQ(3, text.Find(L"bac"));
    EXPECT_EQ(-1, MString().Find(L"a"));
    for (const wchar_t* needle : {L"acx", L"", L"ababacc"})
        EXPECT_EQ(-1, text.Find(needle));
    EXPECT_EQ(-1, text.Find(L"a", 6));
    ExpectText(L"ab", text.Mid(2, 2));
    ExpectText(L"abac", text.Mid(2));
    ExpectText(L"c", text.Mid(5, 7));
    ExpectNoBuffer(text.Mid(6));
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

    MString reserved;
    reserved.Reserve(10);
    std::copy_n(L"hello", 6, reserved.GetBuffer(10, false));
    reserved.GetBuffer(5, true);
    ExpectText(L"hello", reserved);

    MString fresh;
    EXPECT_STREQ(L"", fresh.GetBuffer(4, false));
    fresh.GetBuffer(-7, true);
    EXPECT_EQ(0, fresh.GetLength());
}
