#include "fuzz/XmlInvariants.h"
#include "tests/xml/LiteralParser.h"
#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <sstream>

namespace
{

// Whether the engine makes of a text what the rules, taken literally, make of it.
testing::AssertionResult SameAsLiterally(const std::wstring& text, bool ignoreCase = false)
{
    const LiteralIndex literal = ParseLiterally(text, ignoreCase);
    MXmlMarkup document;
    document.SetDocumentFlags(ignoreCase ? XmlDocIgnoreCase : 0);
    bool same = document.LoadText(text.c_str()) == literal.wellFormed &&
                document.GetErrorText() == literal.errorText &&
                static_cast<std::size_t>(document.GetRecordCount()) == literal.records.size();
    for (std::int32_t i = 0; same && i < document.GetRecordCount(); ++i)
        same = std::memcmp(&document.GetRecord(i), &literal.records[static_cast<std::size_t>(i)],
                           sizeof(MXmlElementRecord)) == 0;
    if (same)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(text);
}

std::vector<std::wstring> Pieces(const wchar_t* joined)
{
    std::vector<std::wstring> pieces;
    std::wistringstream stream(joined);
    for (std::wstring piece; std::getline(stream, piece, L'|');)
        pieces.push_back(piece);
    return pieces;
}

std::wstring RandomText(std::mt19937& random, std::uint32_t count,
                        const std::vector<std::wstring>& pieces, std::size_t choices)
{
    std::wstring text;
    for (; count > 0; --count)
        text += pieces[random() % std::min(choices, pieces.size())];
    return text;
}

} // namespace

TEST(XmlParse, FindingsInWords)
{
    const wchar_t* const findings[][2] = {
        {L"", L"Empty document"},
        {L"only text", L"No root element"},
        {L"</a>", L"No root element"},
        {L"<a><b/>", L"Root element has sibling"},
        {L"<a>", L"Element 'a' at offset 0 not ended"},
        {L"<a></A>", L"No start tag for end tag 'A' at offset 3"},
        {L"<a><b></a>", L"End tag 'a' at offset 7 does not match start tag 'b' at offset 3"},
        {L"<a><!-- x", L"Comment at offset 3 unterminated"},
        {L"<a><b", L"Element tag at offset 3 unterminated"},
        {L"<a></a", L"Element end tag at offset 3 unterminated"},
        {L"<a><![CDATA[x]]", L"CDATA Section at offset 3 unterminated"},
        {L"<a><?x>", L"Processing instruction at offset 3 unterminated"},
        {L"<a><!DOCTYPE <", L"Doctype at offset 3 unterminated"},
        {L"<a><1", L"tag at offset 3 unterminated"},
        {L"<a><!x></a>", L"Incorrect ! tag at offset 3"},
        {L"<a><!-x></a>", L"Incorrect comment tag at offset 3"},
        {L"<a><![x]></a>", L"Incorrect tag at offset 3"},
        {L"<a><1></b></a>", L"Incorrect tag name character at offset 3"},
        {L"x<a b=\"1>2\"/>x", L""},
        {L"<a b=c/>></a b>", L""},
        {L"<a=b></a>", L""},
        {L"<?xml version='1.0'?><!DOCTYPE a [<!ELEMENT a (b)>]><a/>", L""},
        {L"<!-- c --><a><![CDATA[</b>]]><!--></a>-->", L""},
    };
    for (const auto& finding : findings) {
        MXmlMarkup document;
        EXPECT_EQ(document.LoadText(finding[0]), *finding[1] == 0) << finding[0];
        EXPECT_EQ(document.GetErrorText(), finding[1]);
    }
}

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

TEST(XmlParse, LoadingAgainForgetsEverything)
{
    MXmlMarkup document;
    document.LoadText(L"<a><b/></a>");
    document.FindElement();
    document.SavePosition(L"a");
    EXPECT_EQ(document.LoadText(nullptr), 0);
    EXPECT_EQ(document.GetMainIndex(), 0);
    EXPECT_EQ(document.GetRecordCount(), 1);
    EXPECT_FALSE(document.RestorePosition(L"a"));
}

TEST(XmlParse, CapacityGrowsSegmentBySegment)
{
    MXmlMarkup document;
    EXPECT_EQ(document.GetRecordCapacity(), 8);
    std::wstring text = L"<a>";
    for (int i = 0; i < 70000; ++i)
        text += L"<b/>";
    ASSERT_EQ(document.LoadText((text + L"</a>").c_str()), 1);
    // 4383 at first, then by half of what is in use; the first segment is filled up on the way.
    EXPECT_EQ(document.GetRecordCapacity(), 74877);
    EXPECT_EQ(document.GetRecord(65536).start, 3 + 65534 * 4);
    document.GrowRecords(1000000);
    EXPECT_EQ(document.GetRecordCapacity(), 3 * 65536);
    EXPECT_EQ(StaleIndex(document), "");
}

TEST(XmlParse, DepthHasNoLimit)
{
    const std::int32_t depth = 1000000;
    std::wstring opened, closed;
    for (std::int32_t i = 0; i < depth; ++i) {
        opened += L"<a>";
        closed += L"</a>";
    }
    MXmlMarkup document;
    ASSERT_EQ(document.LoadText((opened + closed).c_str()), 1);
    EXPECT_EQ(document.GetRecord(depth).Level(), (depth - 1u) & 0xFFFF);
    EXPECT_TRUE(document.FindElement());
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<b/>"), 1);
    EXPECT_EQ(document.GetDocumentText(), L"<a><b/></a>");
    EXPECT_EQ(document.LoadText(opened.c_str()), 0);
    EXPECT_EQ(document.GetErrorText(), L"Root element has sibling");
}

TEST(XmlParse, RandomTextsAsLiterally)
{
    const std::vector<std::wstring> all = Pieces(
        L"<a>|</a>|<b>|</b>|<c x='1>'>|</c>|<a=b>|<a[1]>|</a=b>|</A>|<d/>|<d />|<!--|-->|-|"
        L"<![CDATA[|]]>|]|<!DOCTYPE a [|]>|<!ELEMENT \"|<!E|<!|<|>|/|=|\"|'| |\n|text|<?|?>|?|<1|"
        L"&amp;|x|<a b=c/>|<a b='c'/>|== =|\u00E9|<\u00E9>|</\u00C9>|</\u00E9>|<!D|<!-|<![|</|<a");
    // Deeper than the search for an end tag looks by itself, with names that share their front.
    const std::vector<std::wstring> nesting =
        Pieces(L"<a>|<b>|<c>|<a=b>|<a[b>|<b]b>|<bab>|<c=bab>|<c[b]b>|<A=b>|<cab>|<B>|"
               L"</a>|</a=b>|</B]b>|</bab>|</c=b>");
    std::mt19937 random(20240301);
    for (int i = 0; i < 6000; ++i) {
        const std::size_t choices = i % 3 == 0 ? 12 : all.size();
        ASSERT_TRUE(SameAsLiterally(RandomText(random, random() % 40, all, choices), i % 4 == 0));
    }
    for (int i = 0; i < 2000; ++i)
        ASSERT_TRUE(SameAsLiterally(RandomText(random, 120, nesting, nesting.size()), i % 4 == 0));
}

TEST(XmlParse, DeepNamesThatComeAndGoAsLiterally)
{
    std::wstring text = L"<r>";
    for (int round = 0; round < 100; ++round) {
        const std::wstring outer = L"o" + std::to_wstring(round);
        text += L"<" + outer + L">";
        for (int i = 0; i < 20; ++i)
            text += L"<n" + std::to_wstring(round * 100 + i) + L">";
        text += L"</none></" + outer + L">";
    }
    EXPECT_TRUE(SameAsLiterally(text + L"</r>"));
}

TEST(XmlParse, EveryPrefixAsLiterally)
{
    const std::wstring text =
        L"<?xml version='1.0'?><!DOCTYPE a [<!ELEMENT a (b)><!-- > --><?p > ?>]>\n"
        L"<a b=\"1>2\" c = 'd' e=f/><g/><!-- - --><![CDATA[]]]]></a></h><1><!x> text </a>";
    for (std::size_t length = 0; length <= text.size(); ++length)
        EXPECT_TRUE(SameAsLiterally(text.substr(0, length)));
}
