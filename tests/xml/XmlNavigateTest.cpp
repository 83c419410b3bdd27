#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

namespace
{

class XmlNavigate : public testing::Test
{
protected:
    std::int32_t Main() const { return document.GetMainIndex(); }

    MXmlMarkup document;
};

class XmlAttribute : public XmlNavigate
{
protected:
    std::wstring Value(const std::wstring& tag, const wchar_t* name)
    {
        document.LoadText(tag.c_str());
        document.FindElement();
        return document.GetAttribute(Main(), name);
    }
};

class XmlData : public XmlNavigate
{
protected:
    std::wstring Data(const wchar_t* text)
    {
        document.LoadText(text);
        document.FindElement();
        return document.GetElementData(Main());
    }
};

} // namespace

TEST_F(XmlNavigate, FindsByNameOrTheVeryNext)
{
    document.LoadText(L"<r><a/><b/><a/><c/></r>");
    ASSERT_TRUE(document.FindElement() && document.EnterElement());
    EXPECT_TRUE(document.FindElement(L"a"));
    EXPECT_TRUE(document.FindElement(L"a[2]/x"));
    EXPECT_EQ(Main(), 4);
    EXPECT_FALSE(document.FindElement(L"b"));
    EXPECT_EQ(Main(), 4);
    EXPECT_TRUE(document.FindElement(L""));
    EXPECT_EQ(document.GetCurrentName(), L"c");
    EXPECT_FALSE(document.FindElement());
    EXPECT_EQ(document.GetCurrentName(), L"c");
}

TEST_F(XmlNavigate, LevelsKeepTheirPlace)
{
    document.LoadText(L"<r><a><b/><c/></a></r>");
    EXPECT_FALSE(document.EnterElement());
    EXPECT_FALSE(document.LeaveElement());
    document.FindElement();
    document.EnterElement();
    document.FindElement();
    document.EnterElement();
    EXPECT_EQ(document.GetNodeType(), 0);
    document.FindElement(L"c");
    EXPECT_TRUE(document.LeaveElement());
    EXPECT_EQ(document.GetCurrentName(), L"a");
    EXPECT_EQ(document.GetNodeType(), XmlNodeElement);
    EXPECT_TRUE(document.EnterElement());
    EXPECT_EQ(document.GetCurrentName(), L"c");
}

TEST_F(XmlNavigate, NextElementHasNoCurrentChild)
{
    document.LoadText(L"<r><a><b/></a><c/></r>");
    document.FindElement();
    document.EnterElement();
    document.FindElement();
    document.EnterElement();
    document.FindElement();
    document.LeaveElement();
    EXPECT_EQ(document.GetChildIndex(), 3);
    EXPECT_TRUE(document.FindElement());
    EXPECT_EQ(document.GetChildIndex(), 0);
}

TEST_F(XmlNavigate, RestoresTheThreeKindsOfPosition)
{
    document.LoadText(L"<r><a><b/></a></r>");
    EXPECT_TRUE(document.SavePosition(L"top"));
    document.FindElement();
    document.EnterElement();
    document.FindElement();
    EXPECT_TRUE(document.SavePosition(L"main"));
    document.EnterElement();
    EXPECT_TRUE(document.SavePosition(L"level"));
    document.FindElement();
    document.LeaveElement();
    EXPECT_TRUE(document.SavePosition(L"child"));

    EXPECT_TRUE(document.RestorePosition(L"level"));
    EXPECT_EQ(document.GetParentIndex(), 2);
    EXPECT_EQ(Main(), 0);
    EXPECT_EQ(document.GetNodeType(), 0);
    EXPECT_TRUE(document.RestorePosition(L"main"));
    EXPECT_EQ(document.GetParentIndex(), 1);
    EXPECT_EQ(Main(), 2);
    EXPECT_EQ(document.GetChildIndex(), 0);
    EXPECT_TRUE(document.RestorePosition(L"child"));
    EXPECT_EQ(Main(), 2);
    EXPECT_EQ(document.GetChildIndex(), 3);
    EXPECT_TRUE(document.RestorePosition(L"top"));
    EXPECT_EQ(document.GetParentIndex(), 0);
    EXPECT_FALSE(document.RestorePosition(L"none"));
    EXPECT_FALSE(document.RestorePosition(nullptr));
    EXPECT_FALSE(document.SavePosition(nullptr));
}

TEST_F(XmlNavigate, SavingAgainOverwrites)
{
    document.LoadText(L"<a/>");
    document.SavePosition(L"");
    document.FindElement();
    document.SavePosition(L"");
    document.EnterElement();
    EXPECT_TRUE(document.RestorePosition(L""));
    EXPECT_EQ(Main(), 1);
    EXPECT_TRUE(document.RestorePosition(L""));
}

TEST(XmlSavedPositions, BucketsGrowFromTwo)
{
    MXmlSavedPositions positions;
    EXPECT_EQ(positions.BucketSize(L"a"), 0);
    // Names of as many "g" fall into one bucket: the code of "g" is 103, and 7 of them are 721.
    std::wstring name = L"a";
    const std::int32_t sizes[] = {2, 2, 14, 14, 14};
    for (std::int32_t size : sizes) {
        positions.Save(name.c_str(), size, 0);
        EXPECT_EQ(positions.BucketSize(name.c_str()), size);
        name += L"ggggggg";
    }
    for (int i = 5; i < 15; ++i) {
        positions.Save(name.c_str(), i, XmlSavedMain);
        name += L"ggggggg";
    }
    EXPECT_EQ(positions.BucketSize(L"a"), 38);
    ASSERT_NE(positions.Find(L"aggggggg"), nullptr);
    EXPECT_EQ(positions.Find(L"aggggggg")->index, 2);
    EXPECT_EQ(positions.Find(name.c_str()), nullptr);
}

TEST(XmlSavedPositions, PurgeClosesTheGaps)
{
    MXmlRecordStore records;
    records.Grow(8);
    for (std::int32_t i = 0; i < 8; ++i)
        records[i] = MXmlElementRecord();
    MXmlSavedPositions positions;
    for (std::int32_t i = 0; i < 4; ++i)
        positions.Save((L"a" + std::wstring(static_cast<std::size_t>(i) * 7, L'g')).c_str(), i + 1,
                       XmlSavedMain);
    records[1].flagsAndLevel = XmlElementDeleted;
    records[3].flagsAndLevel = XmlElementDeleted;
    positions.Purge(records);
    EXPECT_EQ(positions.Find(L"a"), nullptr);
    EXPECT_EQ(positions.Find(L"aggggggg")->index, 2);
    EXPECT_EQ(positions.Find(L"aggggggggggggggggggggg")->index, 4);
    EXPECT_EQ(positions.BucketSize(L"a"), 14);
}

TEST_F(XmlAttribute, ReadsValues)
{
    const std::wstring tag = L"<t a='1' b = \"x &lt; 'y'\" c=3/4 d e='' \t f='6'/>";
    EXPECT_EQ(Value(tag, L"a"), L"1");
    EXPECT_EQ(Value(tag, L"b"), L"x < 'y'");
    EXPECT_EQ(Value(tag, L"c"), L"3/4");
    EXPECT_EQ(Value(tag, L"d"), L"d");
    EXPECT_EQ(Value(tag, L"e"), L"");
    EXPECT_EQ(Value(tag, L"f"), L"6");
    EXPECT_EQ(Value(tag, L"t"), L"");
    EXPECT_EQ(Value(tag, nullptr), L"");
    EXPECT_EQ(document.GetAttribute(0, L"a"), L"");
    EXPECT_EQ(document.GetAttribute(77, L"a"), L"");
}

TEST_F(XmlAttribute, NeedsAPositionOnAnElement)
{
    document.LoadText(L"<a b='1'/>");
    EXPECT_EQ(document.GetAttribute(1, L"b"), L"");
    document.FindElement();
    EXPECT_EQ(document.GetAttribute(1, L"b"), L"1");
}

TEST(XmlFindAttribute, LeavesTheCursorWhereItSays)
{
    const std::wstring tag = L"<t  a='1' b  c />";
    const auto cursorIn = [&] {
        MXmlTokenCursor cursor(tag.c_str(), static_cast<std::int32_t>(tag.size()), 0);
        cursor.next = 1;
        return cursor;
    };
    MXmlTokenCursor value = cursorIn();
    ASSERT_TRUE(MXmlMarkup::FindAttribute(value, L"a", 0));
    EXPECT_EQ(value.start, 7);
    EXPECT_EQ(value.end, 7);
    EXPECT_TRUE(value.Quoted());
    EXPECT_EQ(value.matchStart, 2);
    EXPECT_EQ(value.matchSpace, 2);

    MXmlTokenCursor bare = cursorIn();
    ASSERT_TRUE(MXmlMarkup::FindAttribute(bare, L"b", 0));
    EXPECT_EQ(bare.start, 10);
    EXPECT_EQ(bare.next, 11);
    EXPECT_FALSE(bare.Quoted());

    MXmlTokenCursor counted = cursorIn();
    ASSERT_TRUE(MXmlMarkup::FindAttribute(counted, nullptr, 2));
    EXPECT_EQ(counted.start, 13);

    MXmlTokenCursor missing = cursorIn();
    EXPECT_FALSE(MXmlMarkup::FindAttribute(missing, L"x", 0));
    EXPECT_EQ(missing.next, 14);
}

TEST(XmlFindAttribute, ValueOfNoLengthIsOneCharacter)
{
    const std::wstring text = L"<t a=>b='2'";
    MXmlTokenCursor cursor(text.c_str(), static_cast<std::int32_t>(text.size()), 0);
    cursor.next = 1;
    ASSERT_TRUE(MXmlMarkup::FindAttribute(cursor, L"a", 0));
    EXPECT_EQ(cursor.start, 5);
    EXPECT_EQ(cursor.TokenLength(), 1);
    cursor.next = 1;
    EXPECT_TRUE(MXmlMarkup::FindAttribute(cursor, L"b", 0));
}

TEST(XmlFindAttribute, ComesBackToANameWithoutAValue)
{
    for (const std::wstring text : {L"<t a 'quoted' b='1'/>", L"<t a ="}) {
        MXmlTokenCursor cursor(text.c_str(), static_cast<std::int32_t>(text.size()), 0);
        cursor.next = 1;
        ASSERT_TRUE(MXmlMarkup::FindAttribute(cursor, L"a", 0));
        EXPECT_EQ(cursor.start, 3);
        EXPECT_EQ(cursor.end, 3);
        EXPECT_EQ(cursor.next, 4);
        EXPECT_FALSE(cursor.Quoted());
    }
}

TEST(XmlNameToken, TakesOneCharacterWhereNoNameStands)
{
    const std::wstring text = L" a:b\\<=c ";
    MXmlTokenCursor cursor(text.c_str(), static_cast<std::int32_t>(text.size()), 0);
    for (const wchar_t* token : {L"a:b", L"\\", L"<", L"=", L"c"}) {
        ASSERT_TRUE(MXmlMarkup::NextNameToken(cursor));
        EXPECT_EQ(std::wstring(cursor.Token(), static_cast<std::size_t>(cursor.TokenLength())),
                  token);
    }
    EXPECT_FALSE(MXmlMarkup::NextNameToken(cursor));
    EXPECT_EQ(cursor.TokenLength(), 0);
}

TEST_F(XmlData, TextAndCdataButNotTheRest)
{
    EXPECT_EQ(Data(L"<a> x &amp; y </a>"), L" x & y ");
    EXPECT_EQ(Data(L"<a>1 &lt; 2<b/></a>"), L"");
    EXPECT_EQ(Data(L"<a><![CDATA[x]]]]><![CDATA[>y]]></a>"), L"x]]>y");
    EXPECT_EQ(Data(L"<a>a<!-- x -->b</a>"), L"ab");
    EXPECT_EQ(Data(L"<a> <!-- x --> <![CDATA[&amp;]]>\n</a>"), L"&amp;");
    EXPECT_EQ(Data(L"<a>1>2<?p?>&gt;3</a>"), L"1>2>3");
    EXPECT_EQ(Data(L"<a/>"), L"");
    EXPECT_EQ(Data(L"<a></a>"), L"");
}

TEST_F(XmlNavigate, InnerMarkupAsItStands)
{
    document.LoadText(L"<a> &lt;<b/><!-- c --> </a>");
    document.FindElement();
    EXPECT_EQ(document.GetInnerMarkup(1), L" &lt;<b/><!-- c --> ");
    EXPECT_EQ(document.GetInnerMarkup(2), L"");
    EXPECT_EQ(document.GetInnerMarkup(0), L"");
    EXPECT_EQ(document.GetInnerMarkup(-1), L"");
    EXPECT_EQ(document.GetElementName(3), L"");
}
