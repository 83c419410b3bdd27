#include "fuzz/XmlHarness.h"
#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

// Inputs of the fuzzer, and what its player tells besides looking at names, data and the index.
TEST(XmlOperations, DocumentsMoveReadAndChangeAsTold)
{
    const std::pair<std::string, const wchar_t*> cases[] = {
        {"<r><ab/><a/><b/><a\\x/><c/></r>|f|e|f0a|p|f0a[2]/x|f0b|p|f|f|p", L"1,3,0;!1,5,0;!1,6,0;"},
        // Levels keep their place.
        {"<r><a><b/><c/></a><d/></r>|e|l|f|e|f|e|f|f|l|p|e|p|l|f|p", L"!!1,2,4;2,4,0;1,5,0;"},
        // A position is of a level, an element or a child.
        {"<r><a><b/><c/></a><d/></r>|s0top|f|e|f|s0main|e|s0level|f|l|s0child|r0level|p|r0main|p|"
         "r0child|p|e|p|r0top|p|r0none",
         L"2,0,0;1,2,0;1,2,3;2,3,0;0,0,0;!"},
        {"<t a='1' b = \"x &lt; 'y'\" c=3/4 d e='' \t f='6' g 'x' "
         "h/>|g0a|f|g0a|g0b|g0c|g0d|g0e|g0f|g0g|g0t",
         L";1;x < 'y';3/4;d;;6;g;;"},
        // Data is text and CDATA, but not the rest.
        {"<a> x &amp; y </a>|f|v", L"a= x & y ;"},
        {"<a><![CDATA[x]]]]><![CDATA[>y]]></a>|f|v", L"a=x]]>y;"},
        {"<r><a> x><!-- y --> <![CDATA[&amp;]]>\n</a>z</r>|f|e|f|v", L"a= x>&amp;;"},
        {"x<!-- y --> |v", L"=x;"},
        {"|n1<|v|n3d|v|n5 c |v|n4p a='1'|v|g0a|e|n6<!DOCTYPE b>|v|g0a",
         L"#text=<;#cdata-section=d;#comment= c ;p=p a='1';1;!b=<!DOCTYPE b>;;"},
        // Elements, behind and before others, in all states of the parent.
        {"<a></a>|f|e|a2b|d", L"<a>\n<b/></a>;"}, // a line break comes in front all the same
        {"<a><b/><c/></a>|f|e|s0|f|f|arx|r0|apy|apz|r0|a2w|d",
         L"<a><z/>\n<y/>\n<b/><x/><c/><w/></a>;"},
        {"<a/>|f|a\xB0x|p|a\xB0y|d", L"0,1,2;<a>\n<x/>\n<y/>\n</a>;"},
        {"<a>\n</a>|f|e|a1b,]]>]]>|d",
         L"<a>\n<b><![CDATA[]]]]><![CDATA[>]]]]><![CDATA[>]]></b>\n</a>;"},
        {"<a>\n</a>|f|e|a4b|d", L"<a>\n<b />\n</a>;"},
        // Other nodes.
        {"<a>\n<z/></a>|f|e|nsd|nqx|n4p|d", L"<a>x<?p?>\n<![CDATA[d]]>\n<z/></a>;"},
        {"<a/>|nv<!D b>|d", L"<!D b>\n<a/>;"},
        // Attributes. Some old values take more with them.
        {"<a b='1' c=2 />|f|t0b,<\"|t0c,3|d", L"<a b=\"&lt;&quot;\" c=\"3\" />;"},
        {"<r/>|ntx|t0v,1|n5c|d", L"<?x v=\"1\"?>\n<!--c-->\n<r/>;"},
        {"<a b=1/>|f|t0b,2|d", L"<a b=\"2\">;"},
        {"<a b>|f|t0b,v|d", L"<a \"v\">;"},
        // A node without a line break begins behind the one that comes in front of it.
        {"<a></a>|f|e|n3d|v|n1x|v|d", L"#cdata-section=d;#text=x;<a>\n<![CDATA[d]]>x</a>;"},
        // Inner markup.
        {"<r><a>o<b><c/></b></a><d/></r>|f|e|f|m0 <e><f/></e>n<g/>|d",
         L"<r><a> <e><f/></e>n<g/></a><d/></r>;"},
        {"<r><a /><d/></r>|f|e|f|m0<b/>|m0<h/>|d", L"<r><a ><h/></a><d/></r>;"},
        {"<a><b>x</b></a>|s0|f|e|f|m0plain|r0|apc|d", L"<c/>\n<a><b>plain</b></a>;"},
        // Refusals.
        {"<a/>|nuc|x3a,b|n3]]>|n7a|a\xB0x|a b,x|m0x|f|x2a,b|d", L"!!!!!!!<!--c-->\n<a/>;"},
    };
    for (const auto& each : cases) {
        const auto input = reinterpret_cast<const std::uint8_t*>(each.first.data());
        std::wstring told;
        EXPECT_EQ(PlayXmlInput(input, each.first.size(), &told), "") << each.first;
        EXPECT_EQ(told, each.second) << each.first;
    }
}

TEST(XmlOperations, NothingIsDoneWithoutANameOrAnElement)
{
    MXmlMarkup document;
    document.LoadText(L"<t a='1'>x</t>");
    EXPECT_FALSE(document.RestorePosition(nullptr) || document.SavePosition(nullptr));
    std::wstring text = L"old";
    EXPECT_TRUE(MXmlMarkup::BuildNodeText(3, L"x", text));
    EXPECT_EQ(text, L"");
    document.FindElement();
    EXPECT_FALSE(document.SetAttribute(1, nullptr, L"x"));
    EXPECT_EQ(document.GetAttribute(1, nullptr), L"");
    for (std::int32_t record : {-1, 0, 2, 77})
        EXPECT_EQ(document.GetInnerMarkup(record) + document.GetElementName(record) +
                      document.GetAttribute(record, L"a"),
                  L"");
}

TEST(XmlFindAttribute, LeavesTheCursorWhereItSays)
{
    const std::wstring tag = L"<t  a='1' b  c =";
    MXmlTokenCursor cursor(tag.c_str(), static_cast<std::int32_t>(tag.size()), 0);
    cursor.next = 1;
    ASSERT_TRUE(MXmlMarkup::FindAttribute(cursor, L"a", 0));
    EXPECT_TRUE(cursor.start == 7 && cursor.end == 7 && cursor.Quoted());
    EXPECT_TRUE(cursor.matchStart == 2 && cursor.matchSpace == 2);
    cursor.next = 1;
    ASSERT_TRUE(MXmlMarkup::FindAttribute(cursor, nullptr, 1));
    EXPECT_EQ(cursor.start, 10);
    cursor.next = 1;
    ASSERT_TRUE(MXmlMarkup::FindAttribute(cursor, L"c", 0));
    EXPECT_TRUE(cursor.start == 13 && cursor.next == 14 && !cursor.Quoted());
    EXPECT_TRUE(MXmlMarkup::NextNameToken(cursor) && *cursor.Token() == L'=');
    EXPECT_FALSE(MXmlMarkup::NextNameToken(cursor) || cursor.TokenLength() != 0);
}

TEST(XmlSavedPositions, BucketsGrowAndPurgeClosesTheGaps)
{
    MXmlSavedPositions positions;
    MXmlElementIndex records;
    records.GrowRecords(16);
    // All in one bucket: the code of "g" is 103, and 7 of them are 721.
    const auto name = [](std::int32_t i) { return std::wstring(std::size_t(i) * 7, L'g'); };
    for (std::int32_t i = 0; i < 15; ++i) {
        records[i].flagsAndLevel = i % 2 != 0 ? XmlElementDeleted : 0u;
        EXPECT_EQ(positions.BucketSize(L"a"), 0);
        EXPECT_EQ(positions.Find(name(i).c_str()), nullptr);
        positions.Save(name(i).c_str(), 0, XmlSavedMain);
        positions.Save(name(i).c_str(), i, XmlSavedMain);
        EXPECT_EQ(positions.BucketSize(L""), i < 2 ? 2 : i < 14 ? 14 : 38);
    }
    positions.Purge(records);
    for (std::int32_t i = 0; i < 15; ++i) {
        const MXmlSavedPosition* found = positions.Find(name(i).c_str());
        ASSERT_EQ(found == nullptr, i % 2 != 0);
        EXPECT_TRUE(!found || (found->index == i && (found->flags & XmlSavedMain) != 0));
    }
    EXPECT_EQ(positions.BucketSize(L""), 38);
}

TEST(XmlOperations, ReplacedElementsAreDeletedInOrderAndNotEdited)
{
    MXmlMarkup document;
    document.LoadText(L"<a><b/><c><d/></c></a>");
    ASSERT_TRUE(document.FindElement() && document.EnterElement() && document.FindElement());
    ASSERT_TRUE(document.SavePosition(L"") && document.LeaveElement());
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<1><e>"), 0);
    EXPECT_EQ(document.GetErrorText(), L"Incorrect tag name character at offset 0");
    EXPECT_TRUE(document.GetRecord(1).Has(XmlElementIllFormed));
    EXPECT_FALSE(document.RestorePosition(L"") || document.SetAttribute(2, L"x", L"y"));
    std::vector<std::int32_t> deleted;
    for (std::int32_t at = document.GetDeletedHead(); at != 0;
         at = document.GetRecord(at).nextSibling)
        deleted.push_back(at);
    EXPECT_EQ(deleted, (std::vector<std::int32_t>{5, 3, 4, 2})); // 5 stood for the markup
    EXPECT_EQ(document.GetElementName(2), L"");
    EXPECT_EQ(document.ReplaceInnerMarkup(nullptr), 1);
    EXPECT_FALSE(document.GetRecord(1).Has(XmlElementIllFormed));
    EXPECT_EQ(document.GetErrorText(), L"");
}

// One index is told that it is in no order, and so follows the links. Some elements come to stand
// where they cannot.
TEST(XmlElementIndex, ShiftsByOffsetAsByLinks)
{
    std::mt19937 random(5);
    for (int round = 0; round < 500; ++round) {
        MXmlElementIndex indices[2];
        for (MXmlElementIndex& index : indices)
            index.Clear(8);
        indices[0].LoseOrder();
        for (int step = 0; step < 30; ++step) {
            const auto some = static_cast<std::int32_t>(random() % indices[0].Count());
            const std::uint32_t choice = random();
            const std::int32_t astray = random() % 40 != 0 ? 0 : random() % 60 - 30;
            for (MXmlElementIndex& index : indices) {
                const MXmlElementRecord& at = index[some];
                const std::int32_t last = choice % 2 != 0 ? index.LastChild(some) : 0;
                MXmlElementRecord added = {1, 7, 3 | 4 << 22, 0, 0, 0, 0, 0};
                if (!index.IsInDocument(some))
                    continue;
                if (choice % 8 < 5) {
                    added.start = (last != 0 ? index[last].End() : at.ContentStart()) + astray;
                    index.ShiftOffsetsAfter(some, last, added.length);
                    index.LinkElement(some, last, added);
                } else if (choice % 8 == 5 && some != 0) {
                    index.DeleteDescendants(some);
                    const std::int32_t fragment = index.TakeFragment(index.LevelBelow(some));
                    index.LinkElement(fragment, 0, added);
                    const std::int32_t grown = added.End() - index[some].ContentLength();
                    index.ShiftOffsets(some, grown, true);
                    index[some].GrowBy(grown);
                    index.AdoptFragment(some, fragment, index[some].ContentStart() + astray);
                } else if (some != 0) {
                    index.GrowTag(some, static_cast<std::int32_t>(choice / 8 % 9) - 2);
                }
            }
            for (std::int32_t i = 0; i < indices[0].Count(); ++i)
                ASSERT_EQ(std::memcmp(&indices[0][i], &indices[1][i], sizeof(MXmlElementRecord)), 0)
                    << round << ", step " << step << ", record " << i;
        }
    }
}
