#include "fuzz/XmlInvariants.h"
#include "tests/xml/LiteralParser.h"
#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace
{

struct Finding {
    const wchar_t* text;
    const wchar_t* words;
};

// Whether the engine makes of a text what the rules, taken literally, make of it.
testing::AssertionResult SameAsLiterally(const std::wstring& text, bool ignoreCase = false)
{
    LiteralParser literal(text, ignoreCase);
    const int wellFormed = literal.Load();
    MXmlMarkup document;
    document.SetDocumentFlags(ignoreCase ? XmlDocIgnoreCase : 0);
    bool same = document.LoadText(text.c_str()) == wellFormed &&
                document.GetErrorText() == literal.errorText &&
                static_cast<std::size_t>(document.GetRecordCount()) == literal.records.size();
    for (std::int32_t i = 0; same && i < document.GetRecordCount(); ++i)
        same = std::memcmp(&document.GetRecord(i), &literal.records[static_cast<std::size_t>(i)],
                           sizeof(MXmlElementRecord)) == 0;
    if (same)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(text);
}

// A random text of pieces, the first `choices` of them.
std::wstring RandomText(std::mt19937& random, std::uint32_t pieceCount, std::uint32_t choices)
{
    static const wchar_t* const pieces[] = {L"<a>",
                                            L"</a>",
                                            L"<b>",
                                            L"</b>",
                                            L"<c x='1>'>",
                                            L"</c>",
                                            L"<a=b>",
                                            L"<a[1]>",
                                            L"</a=b>",
                                            L"</A>",
                                            L"<d/>",
                                            L"<d />",
                                            L"<!--",
                                            L"-->",
                                            L"-",
                                            L"<![CDATA[",
                                            L"]]>",
                                            L"]",
                                            L"<!DOCTYPE a [",
                                            L"]>",
                                            L"<!ELEMENT \"",
                                            L"<!E",
                                            L"<!",
                                            L"<",
                                            L">",
                                            L"/",
                                            L"=",
                                            L"\"",
                                            L"'",
                                            L" ",
                                            L"\n",
                                            L"text",
                                            L"<?",
                                            L"?>",
                                            L"?",
                                            L"<1",
                                            L"&amp;",
                                            L"x",
                                            L"<a b=c/>",
                                            L"<a b='c'/>",
                                            L"== =",
                                            L"\u00E9",
                                            L"<!D",
                                            L"<!-",
                                            L"<![",
                                            L"</",
                                            L"<a"};
    const std::uint32_t all = sizeof pieces / sizeof *pieces;
    std::wstring text;
    for (std::uint32_t i = 0; i < pieceCount; ++i)
        text += pieces[random() % std::min(choices, all)];
    return text;
}

// Nesting deeper than the search for an end tag looks by itself, with names that share their front.
std::wstring RandomNesting(std::mt19937& random)
{
    std::wstring text;
    for (int i = 0; i < 120; ++i) {
        std::wstring name(1, static_cast<wchar_t>(L'a' + random() % 3));
        for (std::uint32_t more = random() % 3; more > 0; --more)
            name += std::wstring(1, L"=[]a"[random() % 4]) + L"b";
        text += (random() % 100 < 70 ? L"<" : L"</") + name + L">";
    }
    return text;
}

} // namespace

TEST(XmlParse, FindingsInWords)
{
    const Finding findings[] = {
        {L"", L"Empty document"},
        {L"only text", L"No root element"},
        {L"</a>", L"No root element"},
        {L"<a/><b/>", L"Root element has sibling"},
        {L"<a><b/>", L"Root element has sibling"},
        {L"<a>", L"Element 'a' at offset 0 not ended"},
        {L"<a></b></a>", L"No start tag for end tag 'b' at offset 3"},
        {L"<a></A>", L"No start tag for end tag 'A' at offset 3"},
        {L"<a><b></a>", L"End tag 'a' at offset 7 does not match start tag 'b' at offset 3"},
        {L"<a><!-- x", L"Comment at offset 3 unterminated"},
        {L"<a><b", L"Element tag at offset 3 unterminated"},
        {L"<a></a", L"Element end tag at offset 3 unterminated"},
        {L"<a><![CDATA[x]]", L"CDATA Section at offset 3 unterminated"},
        {L"<a><?x>", L"Processing instruction at offset 3 unterminated"},
        {L"<a><!DOCTYPE <", L"Doctype at offset 3 unterminated"},
        {L"<a><!ELEMENT '>", L"Doctype at offset 3 unterminated"},
        {L"<a><", L"tag at offset 3 unterminated"},
        {L"<a><1", L"tag at offset 3 unterminated"},
        {L"<a><1></a>", L"Incorrect tag name character at offset 3"},
        {L"<a><!x></a>", L"Incorrect ! tag at offset 3"},
        {L"<a><!-x></a>", L"Incorrect comment tag at offset 3"},
        {L"<a><![x]></a>", L"Incorrect tag at offset 3"},
        {L"<a><1></b></a>", L"Incorrect tag name character at offset 3"},
    };
    for (const Finding& finding : findings) {
        MXmlMarkup document;
        EXPECT_EQ(document.LoadText(finding.text), 0) << testing::PrintToString(finding.text);
        EXPECT_EQ(document.GetErrorText(), finding.words);
    }
}

TEST(XmlParse, WellFormedDocuments)
{
    for (const wchar_t* text : {L"<a/>", L"<a/>x", L"x<a/>", L"<a b=\"1>2\"/>", L"<a b=c/></a>",
                                L"<a=b></a>", L"<a>></a>", L"<!DOCTYPE a [<!ELEMENT a (b)>]><a/>",
                                L"<?xml version='1.0'?><!-- c --><a/><!-- d -->",
                                L"<a><![CDATA[</b>]]></a>", L"<a><!--></a>-->", L"<a></a b>"}) {
        MXmlMarkup document;
        EXPECT_EQ(document.LoadText(text), 1) << testing::PrintToString(text);
        EXPECT_EQ(document.GetErrorText(), L"");
    }
}

TEST(XmlParse, ElementRecord)
{
    MXmlMarkup document;
    ASSERT_EQ(document.LoadText(L"<a/>"), 1);
    EXPECT_EQ(document.GetRecord(0).firstChild, 1);
    EXPECT_EQ(document.GetRecord(1).length, 4);
    EXPECT_TRUE(document.GetRecord(1).IsEmptyElement());

    ASSERT_EQ(document.LoadText(L" <a b=c/>text</a>"), 1);
    EXPECT_EQ(document.GetRecord(1).start, 1);
    EXPECT_EQ(document.GetRecord(1).length, 16);
    EXPECT_EQ(document.GetRecord(1).StartTagLength(), 8);
    EXPECT_EQ(document.GetRecord(1).EndTagLength(), 4);
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
    EXPECT_EQ(document.GetInnerMarkup(1).size(), 514u);
}

TEST(XmlParse, DissolvedElementKeepsItsPlace)
{
    MXmlMarkup document;
    ASSERT_EQ(document.LoadText(L"<a><b><c/></a>"), 0);
    const MXmlElementRecord& b = document.GetRecord(2);
    EXPECT_TRUE(b.Has(XmlElementNoEndTag));
    EXPECT_EQ(b.length, 3);
    EXPECT_EQ(b.firstChild, 0);
    EXPECT_EQ(b.nextSibling, 3);
    EXPECT_EQ(document.GetRecord(3).parent, 1);
    EXPECT_EQ(document.GetRecord(3).Level(), 2u);
    EXPECT_TRUE(document.GetRecord(3).Has(XmlElementFirstChild));
}

TEST(XmlParse, ChildBehindADissolvedElementReplacesItsChildren)
{
    MXmlMarkup document;
    ASSERT_EQ(document.LoadText(L"<a><b><c><d/></b><e/></a>"), 0);
    // c was dissolved in b; b's last child is still c, but nothing follows it but d.
    EXPECT_EQ(document.GetRecord(3).nextSibling, 4);
    ASSERT_EQ(document.LoadText(L"<a><b><c></a><d/>"), 0);
    EXPECT_TRUE(SameAsLiterally(L"<r><a><b><c></a><d/></r>"));
}

TEST(XmlParse, IgnoresCaseWhenTold)
{
    MXmlMarkup document;
    document.SetDocumentFlags(XmlDocIgnoreCase);
    EXPECT_EQ(document.LoadText(L"<a></A>"), 1);
    EXPECT_EQ(document.LoadText(L"<\u00E9></\u00C9>"), 0);
}

TEST(XmlParse, LoadingAgainForgetsEverything)
{
    MXmlMarkup document;
    document.LoadText(L"<a><b/></a>");
    document.FindElement();
    document.SavePosition(L"a");
    EXPECT_EQ(document.LoadText(nullptr), 0);
    EXPECT_EQ(document.GetErrorText(), L"Empty document");
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
    EXPECT_EQ(document.GetRecordCount(), 70002);
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
    std::int32_t entered = 0;
    while (document.FindElement() && document.EnterElement())
        ++entered;
    EXPECT_EQ(entered, depth);
    EXPECT_EQ(document.GetRecord(depth).Level(), (depth - 1u) & 0xFFFF);
    while (document.LeaveElement())
        --entered;
    EXPECT_EQ(entered, 0);
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<b/>"), 1);
    EXPECT_EQ(document.GetDocumentText(), L"<a><b/></a>");
    EXPECT_EQ(document.LoadText(opened.c_str()), 0);
    EXPECT_EQ(document.GetErrorText(), L"Root element has sibling");
}

TEST(XmlParse, RandomTextsAsLiterally)
{
    std::mt19937 random(20240301);
    for (int i = 0; i < 6000; ++i) {
        const std::uint32_t choices = i % 3 == 0 ? 12 : 100;
        ASSERT_TRUE(SameAsLiterally(RandomText(random, random() % 40, choices), i % 4 == 0));
    }
}

TEST(XmlParse, RandomNestingAsLiterally)
{
    std::mt19937 random(20240302);
    for (int i = 0; i < 2000; ++i)
        ASSERT_TRUE(SameAsLiterally(RandomNesting(random), i % 4 == 0));
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
