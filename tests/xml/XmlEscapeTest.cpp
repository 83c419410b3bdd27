#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

TEST(XmlEscape, QuotesOnlyWhenTold)
{
    EXPECT_EQ(MXmlMarkup::EscapeText(L"a<b>&\"'", 0), L"a&lt;b&gt;&amp;\"'");
    EXPECT_EQ(MXmlMarkup::EscapeText(L"it's \"", XmlAddEscapeQuotes), L"it&apos;s &quot;");
    EXPECT_EQ(MXmlMarkup::EscapeText(nullptr, 0), L"");
}

TEST(XmlEscape, KeepsWellFormedReferences)
{
    const std::uint32_t keep = XmlAddKeepReferences;
    EXPECT_EQ(MXmlMarkup::EscapeText(L"&amp; &#65; &_x-1.y; &\u00E9;", keep),
              L"&amp; &#65; &_x-1.y; &\u00E9;");
    EXPECT_EQ(MXmlMarkup::EscapeText(L"a & b &; &1; &a b; &a#; &a", keep),
              L"a &amp; b &amp;; &amp;1; &amp;a b; &amp;a#; &amp;a");
}

TEST(XmlUnescape, NamedReferences)
{
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&lt;&amp;&gt;&apos;&quot;", -1), L"<&>'\"");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&nbsp; &LT; &lt", -1), L"&nbsp; &LT; &lt");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&amp;lt;", -1), L"&lt;");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&lt;", 3), L"&lt");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&lt;x", 4), L"<");
}

TEST(XmlUnescape, NumericReferences)
{
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#65;&#x41;&#x0041;", -1), L"AAA");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#12345678;&#1234567", -1), L"&#12345678;&#1234567");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#0000065;", -1), L"A");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#65;", 4), L"&#65");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#x1F600;", -1), std::wstring(1, 0xF600));
}

TEST(XmlUnescape, ZeroRemainsBehindItsCharacter)
{
    const std::wstring zero(1, L'\0');
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#0;", -1), zero + L"&#0;");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#X41;", -1), zero + L"&#X41;");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#65536;b", -1), zero + L"b");
}

TEST(XmlCdata, EndingIsPartedOverTwoSections)
{
    EXPECT_EQ(MXmlMarkup::WrapCdata(L"x"), L"<![CDATA[x]]>");
    EXPECT_EQ(MXmlMarkup::WrapCdata(L"a]]>b]]>"), L"<![CDATA[a]]]]><![CDATA[>b]]]]><![CDATA[>]]>");
}

TEST(XmlNodeText, ByType)
{
    std::wstring text = L"old";
    EXPECT_TRUE(MXmlMarkup::BuildNodeText(XmlNodeElement, L"a", text));
    EXPECT_EQ(text, L"<a/>");
    EXPECT_TRUE(MXmlMarkup::BuildNodeText(XmlNodeText, L"<'", text));
    EXPECT_EQ(text, L"&lt;'");
    EXPECT_TRUE(MXmlMarkup::BuildNodeText(XmlNodeCdata, L"<", text));
    EXPECT_EQ(text, L"<![CDATA[<]]>");
    EXPECT_TRUE(MXmlMarkup::BuildNodeText(XmlNodeInstruction, L"x", text));
    EXPECT_EQ(text, L"<?x?>");
    EXPECT_TRUE(MXmlMarkup::BuildNodeText(XmlNodeComment, L"a--b", text));
    EXPECT_EQ(text, L"<!--a--b-->");
    EXPECT_TRUE(MXmlMarkup::BuildNodeText(XmlNodeDoctype, L"<!D>", text));
    EXPECT_EQ(text, L"<!D>");
}

TEST(XmlNodeText, RefusesWhatCannotBe)
{
    for (std::int32_t type : {-1, 0, 3, 129}) {
        std::wstring text = L"old";
        EXPECT_TRUE(MXmlMarkup::BuildNodeText(type, L"x", text));
        EXPECT_EQ(text, L"");
    }
    std::wstring text = L"old";
    EXPECT_FALSE(MXmlMarkup::BuildNodeText(XmlNodeCdata, L"]]>", text));
    EXPECT_EQ(text, L"");
    EXPECT_FALSE(MXmlMarkup::BuildNodeText(XmlNodeLoneEndTag, L"a", text));
}
