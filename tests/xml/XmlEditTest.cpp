#include "fuzz/XmlInvariants.h"
#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

namespace
{

// A document to edit. Its index is compared with one made afresh after each test.
class XmlEdit : public testing::Test
{
protected:
    void TearDown() override
    {
        EXPECT_EQ(BrokenRule(document), "");
        EXPECT_EQ(StaleIndex(document), "");
    }

    void Load(const wchar_t* text) { document.LoadText(text); }
    const std::wstring& Text() const { return document.GetDocumentText(); }
    std::int32_t Main() const { return document.GetMainIndex(); }

    // Goes into the root.
    void EnterRoot()
    {
        document.FindElement();
        document.EnterElement();
    }

    MXmlMarkup document;
};

// The same, where the index may rightly differ from a fresh one.
class XmlOddEdit : public XmlEdit
{
protected:
    void TearDown() override { EXPECT_EQ(BrokenRule(document), ""); }
};

} // namespace

TEST_F(XmlEdit, FirstChildPutsTheTagsOnLinesOfTheirOwn)
{
    for (const wchar_t* text : {L"<a/>", L"<a></a>"}) {
        Load(text);
        EnterRoot();
        EXPECT_TRUE(document.AddElement(L"b", nullptr, 0));
        EXPECT_EQ(Text(), L"<a>\n<b/>\n</a>");
        EXPECT_EQ(document.GetCurrentName(), L"b");
    }
    Load(L"<r><a></r>");
    EnterRoot();
    EnterRoot();
    EXPECT_TRUE(document.AddElement(L"b", nullptr, 0));
    EXPECT_EQ(Text(), L"<r><a>\n<b/>\n</a></r>");
}

TEST_F(XmlEdit, NextElementComesBehindTheLineBreak)
{
    Load(L"<a>\n<b/>\n</a>");
    EnterRoot();
    document.FindElement();
    EXPECT_TRUE(document.AddElement(L"c", nullptr, 0));
    EXPECT_EQ(Text(), L"<a>\n<b/>\n<c/>\n</a>");
    Load(L"<a><b/> text</a>");
    EnterRoot();
    document.FindElement();
    EXPECT_TRUE(document.AddElement(L"c", nullptr, 0));
    EXPECT_EQ(Text(), L"<a><b/><c/>\n text</a>");
}

TEST_F(XmlEdit, WithoutAPositionTheElementComesLast)
{
    Load(L"<a><b/><c/></a><!-- end -->");
    EnterRoot();
    EXPECT_TRUE(document.AddElement(L"d", L"x", 0));
    EXPECT_EQ(Text(), L"<a><b/><c/><d>x</d>\n</a><!-- end -->");
    EXPECT_EQ(document.GetRecord(1).firstChild, 2);
    EXPECT_EQ(document.GetRecord(2).previousSibling, Main());
}

TEST_F(XmlEdit, BeforeAndFirst)
{
    Load(L"<a><b/><c/></a>");
    EnterRoot();
    document.FindElement(L"c");
    EXPECT_TRUE(document.AddElement(L"x", nullptr, XmlAddBefore | XmlAddNoLineBreak));
    EXPECT_EQ(Text(), L"<a><b/><x/><c/></a>");
    document.LeaveElement();
    document.EnterElement();
    document.LeaveElement();
    document.RestorePosition(L"none");
    Load(Text().c_str());
    EnterRoot();
    EXPECT_TRUE(document.AddElement(L"y", nullptr, XmlAddBefore));
    EXPECT_EQ(Text(), L"<a><y/>\n<b/><x/><c/></a>");
    EXPECT_TRUE(document.GetRecord(Main()).Has(XmlElementFirstChild));
    EXPECT_TRUE(document.AddElement(L"z", nullptr, XmlAddBefore));
    EXPECT_EQ(Text(), L"<a><z/>\n<y/>\n<b/><x/><c/></a>");
}

TEST_F(XmlEdit, ChildOfTheCurrentElement)
{
    Load(L"<a/>");
    EXPECT_FALSE(document.AddElement(L"b", nullptr, XmlAddChild));
    document.FindElement();
    EXPECT_TRUE(document.AddElement(L"b", nullptr, XmlAddChild));
    EXPECT_TRUE(document.AddElement(L"c", nullptr, XmlAddChild));
    EXPECT_EQ(Text(), L"<a>\n<b/>\n<c/>\n</a>");
    EXPECT_EQ(Main(), 1);
    EXPECT_EQ(document.GetElementName(document.GetChildIndex()), L"c");
}

TEST_F(XmlEdit, FormsOfAnElement)
{
    Load(L"<a>\n</a>");
    EnterRoot();
    document.AddElement(L"b", L"x<\"&amp;", XmlAddNoLineBreak);
    document.AddElement(L"c", L"x<\"&amp;", XmlAddKeepReferences | XmlAddEscapeQuotes);
    document.AddElement(L"d", L"a]]>b", XmlAddCdata);
    document.AddElement(L"e", L"", XmlAddSpaceSlash);
    EXPECT_EQ(Text(), L"<a>\n<b>x&lt;\"&amp;amp;</b><c>x&lt;&quot;&amp;</c>\n"
                      L"<d><![CDATA[a]]]]><![CDATA[>b]]></d>\n<e />\n</a>");
}

TEST_F(XmlEdit, NodesMakeNoRecords)
{
    Load(L"<a/>");
    EnterRoot();
    EXPECT_TRUE(document.AddNode(XmlNodeText, L"x<y", 0));
    EXPECT_EQ(Text(), L"<a>x&lt;y</a>");
    EXPECT_EQ(document.GetCurrentName(), L"#text");
    EXPECT_EQ(document.GetElementData(Main()), L"x<y");
    EXPECT_TRUE(document.AddNode(XmlNodeComment, L" c ", 0));
    EXPECT_EQ(document.GetCurrentName(), L"#comment");
    EXPECT_EQ(document.GetElementData(Main()), L" c ");
    EXPECT_FALSE(document.AddNode(XmlNodeCdata, L"]]>", 0));
    EXPECT_FALSE(document.AddNode(XmlNodeLoneEndTag, L"a", 0));
    EXPECT_EQ(document.GetCurrentName(), L"#comment");
    EXPECT_TRUE(document.AddNode(XmlNodeCdata, L"d", 0));
    EXPECT_EQ(document.GetCurrentName(), L"#cdata-section");
    EXPECT_EQ(document.GetElementData(Main()), L"d");
    EXPECT_EQ(Text(), L"<a>x&lt;y<!-- c --><![CDATA[d]]>\n</a>");
    EXPECT_TRUE(document.AddElement(L"b", nullptr, 0));
    EXPECT_TRUE(document.AddNode(XmlNodeElement, L"c", 0));
    EXPECT_EQ(document.GetNodeType(), XmlNodeElement);
    EXPECT_EQ(Text(), L"<a>x&lt;y<!-- c --><![CDATA[d]]>\n<b/><c/>\n</a>");
    EXPECT_EQ(document.GetRecordCount(), 4);
}

TEST_F(XmlEdit, ElementBeforeANodeIsBehindTheElementBeforeBoth)
{
    Load(L"<a><b/><c/></a>");
    EnterRoot();
    document.FindElement();
    EXPECT_TRUE(document.AddNode(XmlNodeComment, L"-", 0));
    EXPECT_TRUE(document.AddElement(L"x", nullptr, XmlAddBefore));
    EXPECT_EQ(Text(), L"<a><b/><x/>\n<!----->\n<c/></a>");
}

TEST_F(XmlEdit, InstructionWithAttributes)
{
    EXPECT_TRUE(document.AddNode(XmlNodeInstruction, L"xml", 0));
    EXPECT_EQ(document.GetCurrentName(), L"xml");
    EXPECT_TRUE(document.SetAttribute(Main(), L"version", L"1.0"));
    EXPECT_TRUE(document.SetAttribute(Main(), L"encoding", L"UTF-8"));
    EXPECT_EQ(document.GetAttribute(Main(), L"version"), L"1.0");
    EXPECT_TRUE(document.AddElement(L"root", nullptr, 0));
    EXPECT_EQ(Text(), L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root/>\n");
}

TEST_F(XmlEdit, DoctypeBeforeTheRoot)
{
    Load(L"<a/>");
    EXPECT_TRUE(document.AddNode(XmlNodeDoctype, L"<!DOCTYPE a SYSTEM 'b'>", XmlAddBefore));
    EXPECT_EQ(Text(), L"<!DOCTYPE a SYSTEM 'b'>\n<a/>");
    EXPECT_EQ(document.GetCurrentName(), L"a");
    EXPECT_EQ(document.GetElementData(Main()), L"<!DOCTYPE a SYSTEM 'b'>");
    EXPECT_FALSE(document.EnterElement());
    EXPECT_FALSE(document.SetAttribute(1, L"a", L"b"));
}

TEST_F(XmlEdit, AttributesAreAddedAndReplaced)
{
    Load(L"<r><a b='1' c=2 /><d/></r>");
    EnterRoot();
    document.FindElement();
    EXPECT_TRUE(document.SetAttribute(Main(), L"b", L"\"x\""));
    EXPECT_TRUE(document.SetAttribute(Main(), L"c", L"3"));
    EXPECT_TRUE(document.SetAttribute(Main(), L"e", nullptr));
    EXPECT_TRUE(document.SetAttribute(Main(), L"e", L"4"));
    EXPECT_FALSE(document.SetAttribute(Main(), nullptr, L"4"));
    EXPECT_FALSE(document.SetAttribute(0, L"f", L"5"));
    EXPECT_EQ(Text(), L"<r><a b=\"&quot;x&quot;\" c=\"3\" e=\"4\" /><d/></r>");
}

TEST_F(XmlEdit, AttributeOfAnElementWithChildren)
{
    Load(L"<r><a><b><c/></b></a><d/></r>");
    document.FindElement();
    EXPECT_TRUE(document.SetAttribute(1, L"x", L"1"));
    EXPECT_TRUE(document.SetAttribute(3, L"y", L"2"));
    EXPECT_EQ(Text(), L"<r x=\"1\"><a><b y=\"2\"><c/></b></a><d/></r>");
}

TEST_F(XmlOddEdit, ValuesThatTakeMoreWithThem)
{
    Load(L"<a b=1/>");
    document.FindElement();
    EXPECT_TRUE(document.SetAttribute(1, L"b", L"2"));
    EXPECT_EQ(Text(), L"<a b=\"2\">");
    Load(L"<a b>");
    document.FindElement();
    EXPECT_TRUE(document.SetAttribute(1, L"b", L"v"));
    EXPECT_EQ(Text(), L"<a \"v\">");
}

TEST_F(XmlOddEdit, StartTagAloneReceivesAChild)
{
    Load(L"<a/>");
    EnterRoot();
    EXPECT_FALSE(document.AddElement(L"b", L"x", XmlAddNoEndTag));
    EXPECT_TRUE(document.AddElement(L"b", L"", XmlAddNoEndTag));
    EXPECT_EQ(Text(), L"<a>\n<b>\n</a>");
    EXPECT_TRUE(document.AddElement(L"c", nullptr, XmlAddChild));
    EXPECT_EQ(Text(), L"<a>\n<b>\n<c/>\n</b>\n</a>");
    EXPECT_FALSE(document.GetRecord(Main()).Has(XmlElementNoEndTag));
    EXPECT_EQ(StaleIndex(document), "");
}

// The line break in front comes all the same, and the node is taken to begin with it.
TEST_F(XmlOddEdit, NoLineBreakIntoNoContent)
{
    Load(L"<a></a>");
    EnterRoot();
    EXPECT_TRUE(document.AddElement(L"b", nullptr, XmlAddNoLineBreak));
    EXPECT_EQ(Text(), L"<a>\n<b/></a>");
    EXPECT_EQ(document.GetRecord(Main()).start, 3);
    Load(L"<a></a>");
    EnterRoot();
    EXPECT_TRUE(document.AddNode(XmlNodeText, L"xy", 0));
    EXPECT_EQ(Text(), L"<a>\nxy</a>");
    EXPECT_EQ(document.GetNodeOffset(), 3);
    EXPECT_EQ(document.GetNodeLength(), 2);
}

TEST_F(XmlEdit, ReplacedMarkup)
{
    Load(L"<r><a>old<b><c/></b></a><d/></r>");
    EnterRoot();
    document.FindElement();
    document.SavePosition(L"a");
    document.EnterElement();
    document.FindElement();
    document.SavePosition(L"b");
    document.LeaveElement();
    EXPECT_EQ(document.ReplaceInnerMarkup(L" <e><f/></e> new <g/>"), 1);
    EXPECT_EQ(Text(), L"<r><a> <e><f/></e> new <g/></a><d/></r>");
    EXPECT_EQ(document.GetErrorText(), L"");
    EXPECT_FALSE(document.RestorePosition(L"b"));
    EXPECT_TRUE(document.RestorePosition(L"a"));
    EXPECT_EQ(document.GetRecord(document.GetRecord(Main()).firstChild).Level(), 2u);
    EXPECT_EQ(document.ReplaceInnerMarkup(L""), 1);
    EXPECT_EQ(Text(), L"<r><a></a><d/></r>");
}

TEST_F(XmlEdit, ReplacedMarkupOfAnEmptyElement)
{
    Load(L"<r><a x='1' /></r>");
    EXPECT_EQ(document.ReplaceInnerMarkup(L"x"), 0);
    EnterRoot();
    document.FindElement();
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<b/>"), 1);
    EXPECT_EQ(Text(), L"<r><a x='1' ><b/></a></r>");
}

TEST_F(XmlOddEdit, MarkupWithoutAnElementMovesTheDocumentsRecord)
{
    Load(L"<a><b>x</b></a>");
    EnterRoot();
    document.FindElement();
    EXPECT_EQ(document.ReplaceInnerMarkup(L"plain"), 1);
    EXPECT_EQ(document.GetRecord(0).start, 6);
    EXPECT_EQ(document.GetInnerMarkup(Main()), L"plain");
    document.LeaveElement();
    EXPECT_TRUE(document.AddElement(L"c", nullptr, 0));
    EXPECT_EQ(Text(), L"<a><b>plain</b></a><c/>\n");
}

TEST_F(XmlOddEdit, IllFormedMarkupIsMarked)
{
    Load(L"<a><b/></a>");
    EnterRoot();
    document.FindElement();
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<1><c>"), 0);
    EXPECT_EQ(document.GetErrorText(), L"Incorrect tag name character at offset 0");
    EXPECT_TRUE(document.GetRecord(Main()).Has(XmlElementIllFormed));
    EXPECT_FALSE(document.GetRecord(0).Has(XmlElementDocumentIllFormed));
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<c/>"), 1);
    EXPECT_FALSE(document.GetRecord(Main()).Has(XmlElementIllFormed));
}

TEST_F(XmlOddEdit, ElementBehindADissolvedOneIsSplicedIn)
{
    Load(L"<a><b><c/></a>");
    EnterRoot();
    EXPECT_TRUE(document.AddElement(L"d", nullptr, 0));
    EXPECT_EQ(Text(), L"<a><b><c/><d/>\n</a>");
    EXPECT_EQ(document.GetRecord(2).nextSibling, Main());
    EXPECT_EQ(document.GetRecord(Main()).nextSibling, 3);
}

TEST_F(XmlOddEdit, DeletedRecordsAreNotEdited)
{
    Load(L"<a><b><c/></b></a>");
    document.FindElement();
    EXPECT_EQ(document.ReplaceInnerMarkup(L""), 1);
    EXPECT_FALSE(document.SetAttribute(2, L"x", L"y"));
    EXPECT_EQ(document.GetElementName(2), L"");
    EXPECT_EQ(document.GetDeletedHead(), 4);
    EXPECT_EQ(document.GetRecord(4).nextSibling, 2);
    EXPECT_EQ(document.GetRecord(2).nextSibling, 3);
}

TEST_F(XmlEdit, ManyLevelsOfManyElements)
{
    for (int level = 0; level < 30; ++level) {
        for (int i = 0; i < 30; ++i) {
            document.AddElement(L"e", i % 2 == 0 ? L"data" : nullptr, 0);
            document.SetAttribute(Main(), L"n", std::to_wstring(i).c_str());
        }
        document.AddElement(L"level", nullptr, 0);
        document.EnterElement();
    }
    while (document.LeaveElement())
        document.AddElement(L"behind", nullptr, 0);
    EXPECT_EQ(document.GetRecordCount(), 1 + 30 * 32);
}
