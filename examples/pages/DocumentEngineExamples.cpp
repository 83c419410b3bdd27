// The examples of docs/document-engine.md, as tests.

#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

std::vector<std::wstring> Titles(const wchar_t* text)
{
    std::vector<std::wstring> titles;
    MXmlMarkup document;
    if (!document.LoadText(text) || !document.FindElement(L"books"))
        return titles;
    document.EnterElement();
    while (document.FindElement(L"book"))
        titles.push_back(document.GetElementData(document.GetMainIndex()));
    return titles;
}

int Count(MXmlMarkup& document)
{
    int count = 0;
    while (true) {
        while (document.FindElement()) {
            ++count;
            document.EnterElement();
        }
        if (!document.LeaveElement())
            return count;
    }
}

} // namespace

TEST(DocumentEngine, ReadsTheChildrenOfTheRoot)
{
    EXPECT_EQ(Titles(L"<books><book>A &amp; B</book><!-- x --><book>C</book></books>"),
              (std::vector<std::wstring>{L"A & B", L"C"}));
}

TEST(DocumentEngine, WalksAllElements)
{
    MXmlMarkup document;
    document.LoadText(L"<a><b><c/><d/></b><e/></a>");
    EXPECT_EQ(Count(document), 5);
}

TEST(DocumentEngine, FindsWhatIsWrong)
{
    MXmlMarkup document;
    std::wstring finding;
    if (!document.LoadText(L"<a><b></a>"))
        finding = document.GetErrorText();
    EXPECT_EQ(finding, L"End tag 'a' at offset 7 does not match start tag 'b' at offset 3");
    document.FindElement();
    EXPECT_EQ(document.GetInnerMarkup(document.GetMainIndex()), L"<b>");
}

TEST(DocumentEngine, WritesADocument)
{
    MXmlMarkup document;
    document.AddNode(XmlNodeInstruction, L"xml", 0);
    document.SetAttribute(document.GetMainIndex(), L"version", L"1.0");
    document.AddElement(L"books", nullptr, 0);
    document.EnterElement();
    document.AddElement(L"book", L"A & B", 0);
    document.SetAttribute(document.GetMainIndex(), L"id", L"1");
    document.AddElement(L"book", nullptr, 0);
    EXPECT_EQ(document.GetDocumentText(), L"<?xml version=\"1.0\"?>\n"
                                          L"<books>\n"
                                          L"<book id=\"1\">A &amp; B</book>\n"
                                          L"<book/>\n"
                                          L"</books>\n");
}

TEST(DocumentEngine, ReplacesWhatAnElementContains)
{
    MXmlMarkup document;
    document.LoadText(L"<a><b>old<c/></b></a>");
    document.FindElement();
    document.EnterElement();
    document.FindElement();
    document.ReplaceInnerMarkup(L"new <d/>");
    EXPECT_EQ(document.GetDocumentText(), L"<a><b>new <d/></b></a>");
}

TEST(DocumentEngine, ComesBackToASavedPosition)
{
    MXmlMarkup document;
    document.LoadText(L"<a><b/><c/></a>");
    document.FindElement();
    document.EnterElement();
    document.FindElement();
    document.SavePosition(L"");
    document.FindElement(L"c");
    document.RestorePosition(L"");
    EXPECT_EQ(document.GetCurrentName(), L"b");
}

TEST(DocumentEngine, WritesNamesAsTheyAreGiven)
{
    MXmlMarkup document;
    document.AddElement(L"no name", nullptr, 0);
    document.AddNode(XmlNodeComment, L"a--b", 0);
    EXPECT_EQ(document.GetDocumentText(), L"<no name/>\n<!--a--b-->\n");
}
