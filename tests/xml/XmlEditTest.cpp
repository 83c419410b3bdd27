#include "fuzz/XmlInvariants.h"
#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

namespace
{

// What is called when it is not `AddNode` with one of its types.
constexpr int AddsElement = 0;
constexpr int SetsAttribute = -1;
constexpr int ReplacesMarkup = -2;

struct Edit {
    // The document, or null for the one that the last edit left.
    const wchar_t* before;
    // The way to the place, in letters of `Go`.
    const char* way;
    int call;
    // Element's or attribute's name, node's text, markup.
    const wchar_t* first;
    // Element's data, attribute's value, the name that an added node then has.
    const wchar_t* second;
    const wchar_t* after;
    std::uint32_t flags = 0;
    // How the index differs from one made afresh.
    const char* stale = "";
};

class XmlEdit : public testing::Test
{
protected:
    // Finds the next element, enters it, leaves the level, saves or restores the position.
    void Go(const wchar_t* text, const char* way)
    {
        if (text)
            document.LoadText(text);
        for (; *way != 0; ++way)
            ASSERT_TRUE(*way == 'f'   ? document.FindElement()
                        : *way == 'e' ? document.EnterElement()
                        : *way == 'l' ? document.LeaveElement()
                        : *way == 's' ? document.SavePosition(L"")
                                      : document.RestorePosition(L""));
    }

    void Check(std::initializer_list<Edit> edits)
    {
        for (const Edit& edit : edits) {
            Go(edit.before, edit.way);
            EXPECT_TRUE(Do(edit));
            Expect(edit.after, edit.stale);
            if (edit.call <= XmlNodeElement)
                continue;
            EXPECT_EQ(document.GetCurrentName(), edit.second);
            EXPECT_EQ(document.GetElementData(Main()), edit.first);
        }
    }

    bool Do(const Edit& edit)
    {
        if (edit.call == AddsElement)
            return document.AddElement(edit.first, edit.second, edit.flags);
        if (edit.call == SetsAttribute)
            return document.SetAttribute(Main(), edit.first, edit.second);
        if (edit.call == ReplacesMarkup)
            return document.ReplaceInnerMarkup(edit.first) == 1;
        return document.AddNode(edit.call, edit.first, edit.flags);
    }

    void Expect(const wchar_t* text, const char* stale)
    {
        EXPECT_EQ(document.GetDocumentText(), text);
        EXPECT_EQ(BrokenRule(document), "") << testing::PrintToString(text);
        EXPECT_EQ(StaleIndex(document), stale) << testing::PrintToString(text);
    }

    std::int32_t Main() const { return document.GetMainIndex(); }

    MXmlMarkup document;
};

} // namespace

TEST_F(XmlEdit, ElementsAdded)
{
    const int add = AddsElement;
    const std::uint32_t quoted = XmlAddKeepReferences | XmlAddEscapeQuotes;
    const std::uint32_t inLine = XmlAddNoLineBreak;
    Check({
        {L"<r><a/><z/></r>", "fefe", add, L"b", L"", L"<r><a>\n<b/>\n</a><z/></r>"},
        {nullptr, "", add, L"c", nullptr, L"<r><a>\n<b/>\n<c/>\n</a><z/></r>"},
        {L"<r><a></a><z/></r>", "fefe", add, L"b", L"", L"<r><a>\n<b/>\n</a><z/></r>"},
        {L"<r><a></r>", "fefe", add, L"b", L"", L"<r><a>\n<b/>\n</a></r>"},
        {L"<r><a /><z/></r>", "fefe", add, L"b", L"", L"<r><a ><b/></a><z/></r>", inLine},
        {L"<a><b/> text</a>", "fef", add, L"c", L"", L"<a><b/><c/>\n text</a>"},
        {L"<a><b/></a><!-- -->", "fes", add, L"c", L"x", L"<a><b/><c>x</c>\n</a><!-- -->"},
        {nullptr, "r", add, L"d", L"", L"<a><b/><c>x</c>\n<d/>\n</a><!-- -->"},
        {L"<a><b/><c/></a>", "fesff", add, L"x", L"", L"<a><b/><x/><c/></a>",
         XmlAddBefore | inLine},
        {nullptr, "r", add, L"y", L"", L"<a><y/>\n<b/><x/><c/></a>", XmlAddBefore},
        {nullptr, "", add, L"z", L"", L"<a><z/>\n<y/>\n<b/><x/><c/></a>", XmlAddBefore},
        {L"<a/>", "f", add, L"b", L"", L"<a>\n<b/>\n</a>", XmlAddChild},
        {nullptr, "", add, L"c", L"", L"<a>\n<b/>\n<c/>\n</a>", XmlAddChild},
        {L"<a>\n</a>", "fe", add, L"b", L"<\"&lt;", L"<a>\n<b>&lt;\"&amp;lt;</b>\n</a>"},
        {L"<a>\n</a>", "fe", add, L"b", L"\"&lt;", L"<a>\n<b>&quot;&lt;</b>\n</a>", quoted},
        {L"<a>\n</a>", "fe", add, L"b", L"]]>]]>",
         L"<a>\n<b><![CDATA[]]]]><![CDATA[>]]]]><![CDATA[>]]></b>\n</a>", XmlAddCdata},
        {L"<a>\n</a>", "fe", add, L"b", L"", L"<a>\n<b />\n</a>", XmlAddSpaceSlash},
        {L"<a/>", "fe", add, L"b", L"", L"<a>\n<b>\n</a>", XmlAddNoEndTag},
        {nullptr, "", add, L"c", L"", L"<a>\n<b>\n<c/>\n</b>\n</a>", XmlAddChild},
        {L"", "", add, L"a", nullptr, L"<a/>\n"},
        // The line break in front comes all the same, and the element is taken to begin with it.
        {L"<a></a>", "fe", add, L"b", L"", L"<a>\n<b/></a>", inLine,
         "the start of element 1 is wrong"},
    });
}

TEST_F(XmlEdit, NodesAddedWithoutARecord)
{
    Check({
        {L"<a/>", "fe", XmlNodeText, L"<", L"#text", L"<a>&lt;</a>"},
        {nullptr, "", XmlNodeComment, L" c ", L"#comment", L"<a>&lt;<!-- c -->\n</a>"},
        {L"<a>\n<z/></a>", "fe", XmlNodeCdata, L"d", L"#cdata-section",
         L"<a><![CDATA[d]]>\n<z/></a>", XmlAddBefore},
        {nullptr, "", XmlNodeText, L"x", L"#text", L"<a>x<![CDATA[d]]>\n<z/></a>", XmlAddBefore},
        {nullptr, "", XmlNodeInstruction, L"p", L"p", L"<a>x<?p?>\n<![CDATA[d]]>\n<z/></a>"},
        {L"<a><b/><c/></a>", "fef", XmlNodeElement, L"x", L"x", L"<a><b/><x/><c/></a>"},
        {L"<a/>", "", XmlNodeDoctype, L"<!D b>", L"b", L"<!D b>\n<a/>", XmlAddBefore},
    });
    Go(L"<a><b/><c/></a>", "fef");
    EXPECT_TRUE(document.AddNode(XmlNodeComment, L"-", 0));
    EXPECT_TRUE(document.AddElement(L"x", nullptr, XmlAddBefore));
    Expect(L"<a><b/><x/>\n<!----->\n<c/></a>", "");
    // Here too a line break comes in front, and is taken for the node's beginning.
    Go(L"<a></a>", "fe");
    EXPECT_TRUE(document.AddNode(XmlNodeText, L"xy", 0));
    Expect(L"<a>\nxy</a>", "");
    EXPECT_EQ(document.GetElementData(Main()), L"\nx");
}

TEST_F(XmlEdit, RefusalsChangeNothing)
{
    Go(L"<a/>", "");
    EXPECT_TRUE(document.AddNode(XmlNodeComment, L"c", XmlAddBefore));
    EXPECT_FALSE(document.EnterElement());
    EXPECT_FALSE(document.SetAttribute(1, L"a", L"b"));
    EXPECT_FALSE(document.AddNode(XmlNodeCdata, L"]]>", 0));
    EXPECT_FALSE(document.AddElement(L"b", nullptr, XmlAddChild));
    EXPECT_FALSE(document.AddElement(L"b", L"x", XmlAddNoEndTag));
    EXPECT_EQ(document.ReplaceInnerMarkup(L"x"), 0);
    Go(nullptr, "f");
    EXPECT_FALSE(document.SetAttribute(1, nullptr, L"4"));
    EXPECT_FALSE(document.SetAttribute(0, L"f", L"5"));
    Expect(L"<!--c-->\n<a/>", "");
}

TEST_F(XmlEdit, AttributesAddedAndReplaced)
{
    const int set = SetsAttribute;
    Check({
        {L"<a b='1' c=2 />", "f", set, L"b", L"<\"", L"<a b=\"&lt;&quot;\" c=2 />"},
        {nullptr, "", set, L"c", L"3", L"<a b=\"&lt;&quot;\" c=\"3\" />"},
        {L"<r><a /><d/></r>", "fef", set, L"e", nullptr, L"<r><a e=\"\" /><d/></r>"},
        {L"<r><a><b/></a><d/></r>", "f", set, L"x", L"1", L"<r x=\"1\"><a><b/></a><d/></r>"},
        {L"<r/>", "", XmlNodeInstruction, L"x", L"x", L"<?x?>\n<r/>", XmlAddBefore},
        {nullptr, "", set, L"v", L"1", L"<?x v=\"1\"?>\n<r/>"},
        {nullptr, "", XmlNodeComment, L"c", L"#comment", L"<?x v=\"1\"?>\n<!--c-->\n<r/>"},
        // Values that take more with them.
        {L"<a b=1/>", "f", set, L"b", L"2", L"<a b=\"2\">"},
        {L"<a b>", "f", set, L"b", L"v", L"<a \"v\">"},
    });
}

TEST_F(XmlEdit, MarkupReplaced)
{
    const int replace = ReplacesMarkup;
    const wchar_t* const unused = nullptr;
    Check({
        {L"<r><a>o<b><c/></b></a><d/></r>", "fef", replace, L" <e><f/></e>n<g/>", unused,
         L"<r><a> <e><f/></e>n<g/></a><d/></r>"},
        {nullptr, "", replace, L"<h/>", unused, L"<r><a><h/></a><d/></r>"},
        {L"<r><a /><d/></r>", "fef", replace, L"<b/>", unused, L"<r><a ><b/></a><d/></r>"},
        {L"<r><a></a><d/></r>", "fef", replace, L"<b/>", unused, L"<r><a><b/></a><d/></r>"},
    });
}

TEST_F(XmlEdit, ReplacedElementsAreDeletedInOrderAndNotEdited)
{
    Go(L"<a><b><c/></b></a>", "fefsl");
    EXPECT_EQ(document.ReplaceInnerMarkup(L""), 1);
    EXPECT_FALSE(document.RestorePosition(L""));
    EXPECT_FALSE(document.SetAttribute(2, L"x", L"y"));
    EXPECT_EQ(document.GetElementName(2), L"");
    EXPECT_EQ(document.GetDeletedHead(), 4);
    EXPECT_EQ(document.GetRecord(4).nextSibling, 2);
    EXPECT_EQ(document.GetRecord(2).nextSibling, 3);
}

TEST_F(XmlEdit, MarkupWithoutAnElementMovesTheDocumentsRecord)
{
    Go(L"<a><b>x</b></a>", "fef");
    EXPECT_EQ(document.ReplaceInnerMarkup(L"plain"), 1);
    EXPECT_EQ(document.GetRecord(0).start, 6);
    Expect(L"<a><b>plain</b></a>", "");
    Go(nullptr, "l");
    EXPECT_TRUE(document.AddElement(L"c", nullptr, 0));
    EXPECT_EQ(document.GetDocumentText(), L"<a><b>plain</b></a><c/>\n");
}

TEST_F(XmlEdit, IllFormedMarkupIsMarked)
{
    Go(L"<a><b/></a>", "fef");
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<1><c>"), 0);
    EXPECT_EQ(document.GetErrorText(), L"Incorrect tag name character at offset 0");
    EXPECT_TRUE(document.GetRecord(Main()).Has(XmlElementIllFormed));
    EXPECT_EQ(document.ReplaceInnerMarkup(L"<c/>"), 1);
    EXPECT_FALSE(document.GetRecord(Main()).Has(XmlElementIllFormed));
    EXPECT_EQ(document.GetErrorText(), L"");
}
