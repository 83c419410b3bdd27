#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

namespace
{

class XmlNavigate : public testing::Test
{
protected:
    void ExpectPosition(std::int32_t parent, std::int32_t main, std::int32_t child)
    {
        EXPECT_EQ(document.GetParentIndex(), parent);
        EXPECT_EQ(document.GetMainIndex(), main);
        EXPECT_EQ(document.GetChildIndex(), child);
        EXPECT_EQ(document.GetNodeType(), main != 0 ? XmlNodeElement : 0);
    }

    MXmlMarkup document;
};

// Names of as many "g" fall into one bucket: the code of "g" is 103, and 7 of them are 721.
std::wstring InOneBucket(std::int32_t i)
{
    return L"a" + std::wstring(static_cast<std::size_t>(i) * 7, L'g');
}

} // namespace

TEST_F(XmlNavigate, FindsByNameOrTheVeryNext)
{
    document.LoadText(L"<r><ab/><a/><b/><a\\x/><c/></r>");
    ASSERT_TRUE(document.FindElement() && document.EnterElement());
    EXPECT_TRUE(document.FindElement(L"a"));
    EXPECT_TRUE(document.FindElement(L"a[2]/x"));
    EXPECT_FALSE(document.FindElement(L"b"));
    ExpectPosition(1, 5, 0);
    EXPECT_TRUE(document.FindElement(L""));
    EXPECT_FALSE(document.FindElement());
    ExpectPosition(1, 6, 0);
}

TEST_F(XmlNavigate, LevelsKeepTheirPlaceAndPositionsAreOfThreeKinds)
{
    document.LoadText(L"<r><a><b/><c/></a><d/></r>");
    EXPECT_FALSE(document.EnterElement());
    EXPECT_FALSE(document.LeaveElement());
    EXPECT_TRUE(document.SavePosition(L"top"));
    EXPECT_TRUE(document.FindElement() && document.EnterElement() && document.FindElement());
    EXPECT_TRUE(document.SavePosition(L"main"));
    EXPECT_TRUE(document.EnterElement());
    EXPECT_TRUE(document.SavePosition(L"level"));
    EXPECT_TRUE(document.FindElement(L"c") && document.LeaveElement());
    ExpectPosition(1, 2, 4);
    EXPECT_TRUE(document.SavePosition(L"child"));
    EXPECT_TRUE(document.EnterElement());
    ExpectPosition(2, 4, 0);

    EXPECT_TRUE(document.RestorePosition(L"level"));
    ExpectPosition(2, 0, 0);
    EXPECT_TRUE(document.RestorePosition(L"main"));
    ExpectPosition(1, 2, 0);
    EXPECT_TRUE(document.RestorePosition(L"child"));
    ExpectPosition(1, 2, 4);
    EXPECT_TRUE(document.FindElement());
    ExpectPosition(1, 5, 0);
    EXPECT_TRUE(document.RestorePosition(L"top"));
    ExpectPosition(0, 0, 0);
    EXPECT_FALSE(document.RestorePosition(L"none"));
    EXPECT_FALSE(document.RestorePosition(nullptr));
    EXPECT_FALSE(document.SavePosition(nullptr));
}

TEST(XmlSavedPositions, BucketsGrowAndPurgeClosesTheGaps)
{
    MXmlSavedPositions positions;
    MXmlRecordStore records;
    records.Grow(16);
    for (std::int32_t i = 0; i < 15; ++i) {
        records[i].flagsAndLevel = i % 2 != 0 ? XmlElementDeleted : 0u;
        positions.Save(InOneBucket(i).c_str(), 0, XmlSavedMain);
        positions.Save(InOneBucket(i).c_str(), i, XmlSavedMain);
        EXPECT_EQ(positions.BucketSize(L"a"), i < 2 ? 2 : i < 14 ? 14 : 38);
    }
    EXPECT_EQ(positions.Find(InOneBucket(15).c_str()), nullptr);
    positions.Purge(records);
    for (std::int32_t i = 0; i < 15; ++i) {
        const MXmlSavedPosition* found = positions.Find(InOneBucket(i).c_str());
        ASSERT_EQ(found == nullptr, i % 2 != 0);
        EXPECT_EQ(found ? found->index : i, i);
    }
    EXPECT_EQ(positions.BucketSize(L"a"), 38);
}

TEST_F(XmlNavigate, AttributesReadAtAPosition)
{
    const wchar_t* const values[][2] = {{L"a", L"1"}, {L"b", L"x < 'y'"}, {L"c", L"3/4"},
                                        {L"d", L"d"}, {L"e", L""},        {L"f", L"6"},
                                        {L"t", L""},  {nullptr, L""}};
    document.LoadText(L"<t a='1' b = \"x &lt; 'y'\" c=3/4 d e='' \t f='6'/>");
    EXPECT_EQ(document.GetAttribute(1, L"a"), L"");
    document.FindElement();
    for (const auto& value : values)
        EXPECT_EQ(document.GetAttribute(1, value[0]), value[1]);
    EXPECT_EQ(document.GetAttribute(0, L"a"), L"");
    EXPECT_EQ(document.GetAttribute(77, L"a"), L"");
}

TEST(XmlFindAttribute, LeavesTheCursorWhereItSays)
{
    const std::wstring tag = L"<t  a='1' b  c />";
    MXmlTokenCursor cursor(tag.c_str(), static_cast<std::int32_t>(tag.size()), 0);
    cursor.next = 1;
    ASSERT_TRUE(MXmlMarkup::FindAttribute(cursor, L"a", 0));
    EXPECT_TRUE(cursor.start == 7 && cursor.end == 7 && cursor.Quoted());
    EXPECT_TRUE(cursor.matchStart == 2 && cursor.matchSpace == 2);
    cursor.next = 1;
    ASSERT_TRUE(MXmlMarkup::FindAttribute(cursor, nullptr, 2));
    EXPECT_TRUE(cursor.start == 13 && cursor.end == 13 && !cursor.Quoted());
    // Back on a name without a value, from whatever follows it.
    for (const std::wstring bare : {L"<t a 'quoted' b='1'/>", L"<t a ="}) {
        MXmlTokenCursor onName(bare.c_str(), static_cast<std::int32_t>(bare.size()), 0);
        onName.next = 1;
        ASSERT_TRUE(MXmlMarkup::FindAttribute(onName, L"a", 0));
        EXPECT_TRUE(onName.start == 3 && onName.end == 3 && onName.next == 4 && !onName.Quoted());
    }
}

TEST_F(XmlNavigate, DataIsTextAndCdataButNotTheRest)
{
    const wchar_t* const cases[][2] = {
        {L" x &amp; y ", L" x & y "},
        {L"1 &lt; 2<b/>", L""},
        {L"<![CDATA[x]]]]><![CDATA[>y]]>", L"x]]>y"},
        {L"a<!-- x -->b", L"ab"},
        {L" <!-- x --> <![CDATA[&amp;]]>\n", L"&amp;"},
        {L"1>2<?p?>&gt;3", L"1>2>3"},
        {L"", L""},
    };
    for (const auto& each : cases) {
        document.LoadText((std::wstring(L"<a>") + each[0] + L"</a>").c_str());
        document.FindElement();
        EXPECT_EQ(document.GetElementData(1), each[1]);
        EXPECT_EQ(document.GetInnerMarkup(1), each[0]);
    }
    for (std::int32_t record : {-1, 0, 2})
        EXPECT_EQ(document.GetInnerMarkup(record) + document.GetElementName(record), L"");
}
