#include "xml/MXmlMarkup.h"

#include <gtest/gtest.h>

TEST(XmlEscape, QuotesAndReferencesAsTold)
{
    const struct {
        const wchar_t* text;
        std::uint32_t flags;
        const wchar_t* escaped;
    } cases[] = {
        {nullptr, 0, L""},
        {L"a<b>&amp;\"'", 0, L"a&lt;b&gt;&amp;amp;\"'"},
        {L"it's \"", XmlAddEscapeQuotes, L"it&apos;s &quot;"},
        {L"&amp; &#65; &_x-1.y; &\u00E9;", XmlAddKeepReferences, L"&amp; &#65; &_x-1.y; &\u00E9;"},
        {L"a & b &; &1; &a b; &a#; &a", XmlAddKeepReferences,
         L"a &amp; b &amp;; &amp;1; &amp;a b; &amp;a#; &amp;a"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(MXmlMarkup::EscapeText(each.text, each.flags), each.escaped);
}

TEST(XmlEscape, ReferencesResolvedWithinTheLength)
{
    const struct {
        const wchar_t* text;
        std::int32_t length;
        std::wstring resolved;
    } cases[] = {
        {nullptr, -1, L""},
        {L"&lt;&amp;lt;&gt;&apos;&quot;", -1, L"<&lt;>'\""},
        {L"&nbsp; &LT; &lt", -1, L"&nbsp; &LT; &lt"},
        {L"&lt;", 3, L"&lt"},
        {L"&lt;x", 4, L"<"},
        {L"&#65;&#x41;&#x0041;&#0000065;", -1, L"AAAA"},
        {L"&#12345678;&#1234567", -1, L"&#12345678;&#1234567"},
        {L"&#65;", 4, L"&#65"},
        {L"&#x1F600;", -1, L"\uF600"},
        // A zero leaves its reference behind it.
        {L"&#X41;", -1, {0, L'&', L'#', L'X', L'4', L'1', L';'}},
        {L"&#65536;b", -1, {0, L'b'}},
        // Digits are those of ASCII: no other script's, no signs, no white space.
        {L"&#6\u0665;&#x4\uFF11;&#x1g;", -1, L"\6\4\1"},
        {L"&#\u0665;", -1, {0, L'&', L'#', L'\u0665', L';'}},
        {L"&# 5;&#-5;", -1, {0, L'&', L'#', L' ', L'5', L';', 0, L'&', L'#', L'-', L'5', L';'}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(MXmlMarkup::UnescapeText(each.text, each.length), each.resolved);
}
