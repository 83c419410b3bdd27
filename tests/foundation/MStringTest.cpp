#include "foundation/MString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <utility>

namespace
{

/// Expects the text in a buffer that it fills, and none if it is empty.
void ExpectText(const wchar_t* expected, const MString& text)
{
    EXPECT_STREQ(expected, text.c_str());
    EXPECT_EQ(std::wcslen(expected), static_cast<std::size_t>(text.GetLength()));
    EXPECT_EQ(text.GetLength(), text.GetCapacity());
}

} // namespace

TEST(MString, AssignmentFitsExactlyAndAMoveLeavesTheSourceEmpty)
{
    const wchar_t* const none = nullptr;
    ExpectText(L"", MString(none) += MString(L""));
    MString text(L"a long text");
    text = MString(L"abc");
    const MString& self = text;
    text = self;
    MString target(std::move(text));
    ExpectText(L"abc", target);
    ExpectText(L"", text); // NOLINT: that is the point
    text = std::move(target);
    ExpectText(L"abc", text);
    text.Format(L"%ls-%d", text.c_str(), 42);
    ExpectText(L"abc-42", text);
    text.Format(L"%ls", L"");
    ExpectText(L"", text);
    text = L"abc";
    text = static_cast<const MString&>(target); // NOLINT
    ExpectText(L"", text);
}

TEST(MString, AppendedToItselfDoublesInTheRoomThatIsThere)
{
    MString text(L"ab");
    text += text;
    ExpectText(L"abab", text);
    text.Reserve(4);
    const wchar_t* const before = text.c_str();
    text += text;
    ExpectText(L"abababab", text);
    EXPECT_EQ(before, text.c_str());
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
    for (const wchar_t* needle : {L"acx", L"", L"ababacc"})
        EXPECT_EQ(-1, text.Find(needle));
    EXPECT_EQ(-1, text.Find(L"a", 6));
    ExpectText(L"ab", text.Mid(2, 2));
    ExpectText(L"c", text.Mid(5));
    ExpectText(L"", text.Mid(6));
    ExpectText(L"", text.Mid(2, -1));
}

TEST(MString, BufferIsKeptShrunkOrGrown)
{
    MString text;
    text.Reserve(10);
    wchar_t* const room = text.GetBuffer(9, false);
    std::copy_n(L"hello", 6, room);
    EXPECT_EQ(0, text.GetLength());
    EXPECT_EQ(room, text.GetBuffer(10, true));
    text.GetBuffer(5, true); // what was written counts as text
    ExpectText(L"hello", text);
    EXPECT_STREQ(L"hello", text.GetBuffer(7, false));
    EXPECT_EQ(7, text.GetLength());
    text.GetBuffer(-7, true);
    EXPECT_EQ(0, text.GetLength());
}
