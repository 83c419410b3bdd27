#include "fuzz/XmlExhaustiveTexts.h"

#include <gtest/gtest.h>

#include <random>

TEST(XmlParse, TagsBeyondWhatARecordHolds)
{
    const std::wstring attribute = L" a='" + std::wstring(0x100000, L'x') + L"'";
    MXmlMarkup document;
    ASSERT_EQ(document.LoadText((L"<b" + attribute + L"/>").c_str()), 1);
    EXPECT_EQ(document.GetRecord(1).length, 0x100000 + 9);
    EXPECT_EQ(document.GetRecord(1).StartTagLength(), 9);
    ASSERT_EQ(document.LoadText((L"<b></b" + std::wstring(510, L' ') + L">").c_str()), 1);
    EXPECT_EQ(document.GetRecord(1).EndTagLength(), 514 - 1024);
}

TEST(XmlParse, CapacityGrowsSegmentBySegmentAndDepthHasNoLimit)
{
    MXmlMarkup document;
    EXPECT_EQ(document.GetRecordCapacity(), 8);
    const std::int32_t depth = 70000;
    std::wstring opened, closed;
    for (std::int32_t i = 0; i < depth; ++i) {
        opened += L"<a>";
        closed += L"</a>";
    }
    EXPECT_TRUE(XmlExhaustiveTexts().IsDocument(opened + closed));
    ASSERT_EQ(document.LoadText((opened + closed).c_str()), 1);
    // 7664 at first, then by half of what is in use; the first segment is filled up on the way.
    EXPECT_EQ(document.GetRecordCapacity(), 87297);
    document.FindElement();
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<b/>"), 1);
    EXPECT_EQ(document.GetDocumentText(), L"<a><b/></a>");
    document.SavePosition(L"");
    EXPECT_EQ(document.LoadText(opened.c_str()), 0); // which forgets everything
    EXPECT_EQ(document.GetErrorText(), L"Root element has sibling");
    EXPECT_EQ(document.GetRecordCount(), depth + 1);
    EXPECT_FALSE(document.RestorePosition(L"") || document.LeaveElement());
    document.GrowRecords(1000000);
    EXPECT_EQ(document.GetRecordCapacity(), 3 * 65536);
}

// Deeper than the search for an end tag looks by itself, with names that share their front.
TEST(XmlParse, RandomNestingAsLiterally)
{
    std::vector<std::wstring> pieces = {
        L"<a>",     L"<b>",      L"<c>",       L"<a=b>",    L"<a[b>",  L"<b]b>",  L"<bab>",
        L"<c=bab>", L"<c[b]b>",  L"<A=b>",     L"<cab>",    L"<B>",    L"<d/>",   L"x>",
        L">/a>",    L"</a>",     L"</a=b>",    L"</B]b>",   L"</bab>", L"</c=b>", L"<!-- -->",
        L"<1>",     L"<\u00E9>", L"</\u00C9>", L"</\u00E9>"};
    for (const wchar_t* longer : {L"<a_name_longer_than_a_block>", L"</a_name_longer_than_a_block>",
                                  L"<!--a->", L"<:>", L"<`>", L"<!D[<!A '>'><!N>]>"})
        pieces.push_back(longer);
    XmlExhaustiveTexts texts;
    std::mt19937 random(20240301);
    for (int i = 0; i < 4000; ++i) {
        std::wstring text;
        for (std::uint32_t count = i % 2 == 0 ? 120 : random() % 40; count > 0; --count)
            text += pieces[random() % pieces.size()];
        ASSERT_TRUE(texts.IsDocument(text, i % 4 == 0)) << testing::PrintToString(text);
    }
}

TEST(XmlParse, DeepNamesThatComeAndGoAsLiterally)
{
    std::wstring text = L"<r>";
    for (int i = 0; i < 2000; ++i) {
        text += i % 20 == 0 ? L"</none></o><o>" : L"";
        text += L"<n" + std::to_wstring(i) + L">";
    }
    // And two in one place of the index.
    for (const std::wstring& each :
         {text + L"</none></o></r>", std::wstring(L"<n2479381><n8842990><a><a><a><a></n2479381>")})
        EXPECT_TRUE(XmlExhaustiveTexts().IsDocument(each));
}

// The source is copied while it is parsed, but it may be the document's own.
TEST(XmlParse, APartOfTheDocumentIsLoadedIntoIt)
{
    MXmlMarkup document;
    std::wstring text = L"<a>";
    while (text.size() < 10000)
        text += L"<b>text</b>";
    document.LoadText((L"<r>" + text + L"</a>").c_str());
    ASSERT_EQ(document.LoadText(document.GetDocumentText().c_str() + 3), 1);
    EXPECT_EQ(document.GetDocumentText(), text + L"</a>");
    EXPECT_EQ(document.GetRecord(1).length, static_cast<std::int32_t>(text.size()) + 4);
}
