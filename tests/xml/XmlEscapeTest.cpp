#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

TEST(XmlEscape, QuotesAndReferencesAsTold)
{
    EXPECT_EQ(MXmlMarkup::EscapeText(nullptr, 0), L"");
    EXPECT_EQ(MXmlMarkup::EscapeText(L"a<b>&amp;\"'", 0), L"a&lt;b&gt;&amp;amp;\"'");
    EXPECT_EQ(MXmlMarkup::EscapeText(L"it's \"", XmlAddEscapeQuotes), L"it&apos;s &quot;");
    const std::wstring references = L"&amp; &#65; &_x-1.Y; &LT; &:; &\u00E9;";
    EXPECT_EQ(MXmlMarkup::EscapeText(references.c_str(), XmlAddKeepReferences), references);
    EXPECT_EQ(MXmlMarkup::EscapeText(L"a & b &; &1; &[; &a b; &a#; &a", XmlAddKeepReferences),
              L"a &amp; b &amp;; &amp;1; &amp;[; &amp;a b; &amp;a#; &amp;a");
}

TEST(XmlEscape, ReferencesResolvedWithinTheLength)
{
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&lt;", 3), L"&lt");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&lt;x", 4), L"<");
    EXPECT_EQ(MXmlMarkup::UnescapeText(L"&#65;", 4), L"&#65");
    const std::pair<const wchar_t*, std::wstring> whole[] = {
        {nullptr, L""},
        {L"&lt;&amp;lt;&gt;&apos;&quot;", L"<&lt;>'\""},
        {L"&nbsp; &LT; &lt", L"&nbsp; &LT; &lt"},
        {L"&#65;&#x41;&#x0041;&#0000065;", L"AAAA"},
        {L"&#12345678;&#1234567", L"&#12345678;&#1234567"},
        {L"&#x1F600;", L"\uF600"},
        // A zero leaves its reference behind it.
        {L"&#X41;", {0, L'&', L'#', L'X', L'4', L'1', L';'}},
        {L"&#65536;b", {0, L'b'}},
        // Digits are those of ASCII: no other script's, no signs, no white space.
        {L"&#6\u0665;&#x4\uFF11;&#x1g;", L"\6\4\1"},
        {L"&#\u0665;", {0, L'&', L'#', L'\u0665', L';'}},
        {L"&# 5;&#-5;", {0, L'&', L'#', L' ', L'5', L';', 0, L'&', L'#', L'-', L'5', L';'}},
    };
    for (const auto& each : whole)
        EXPECT_EQ(MXmlMarkup::UnescapeText(each.first, -1), each.second);
}
