#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "fuzz/FilersHarness.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <thread>

namespace
{

const std::wstring declaration = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::wstring TextOf(const MOutFilerTaggedXml& filer)
{
    MString text(L"untouched");
    EXPECT_TRUE(filer.GetDocumentText(&text));
    return text.c_str();
}

} // namespace

TEST(MOutFilerTaggedXml, DocumentHasItsFormToTheCharacter)
{
    MOutFilerTaggedXml filer(L"r", L"urn:<1>");
    EXPECT_EQ(declaration + L"<r xmlns=\"urn:&lt;1&gt;\"/>\n", TextOf(filer));
    EXPECT_TRUE(filer.WriteChar(L"v", 'c') && filer.WriteChar(L"v", '\0'));
    EXPECT_TRUE(filer.WriteString(L"v", L"a<b") && filer.WriteString(L"v", L""));
    EXPECT_TRUE(filer.BeginGroup(L"g") && filer.BeginGroup(L"empty") && filer.EndGroup());
    EXPECT_TRUE(filer.WriteDouble(L"v", 2.5) && filer.WriteFloat(L"v", -0.5) && filer.EndGroup());
    EXPECT_TRUE(filer.WriteByte(L"v", 200) && filer.WriteUInt16(L"v", 65535));
    EXPECT_TRUE(filer.WriteDocument(L"d", L"<root a='b'><v/><!--c-->t</root>"));
    EXPECT_TRUE(filer.WriteDocument(L"e", L"<root/>"));
    EXPECT_FALSE(filer.WriteDocument(L"e", L"<root>"));
    EXPECT_TRUE(filer.EndGroup() && !filer.EndGroup());
    EXPECT_TRUE(filer.WriteDouble(L"v", -std::numeric_limits<double>::infinity()));
    EXPECT_EQ(declaration + L"<r xmlns=\"urn:&lt;1&gt;\">\n"
                            L"<v type=\"char\">c</v>\n<v type=\"char\"/>\n"
                            L"<v type=\"string\">a&lt;b</v>\n<v type=\"string\"/>\n"
                            L"<g>\n<empty/>\n<v type=\"float\">2.500000000000000e+00</v>\n"
                            L"<v type=\"float\">-5.00000000e-01</v>\n</g>\n"
                            L"<v type=\"byte\">200</v>\n<v type=\"uint\">65535</v>\n"
                            L"<d><v/><!--c-->t</d>\n<e></e>\n</r>\n"
                            L"<v type=\"float\">-inf</v>\n", // one end too many leaves the root
              TextOf(filer));
    EXPECT_FALSE(filer.GetDocumentText(nullptr));

    MInFilerTaggedXml in(L"<r><d type='int'>0</d><d><v/><!--c-->t</d></r>", L"r", nullptr);
    MString text;
    EXPECT_TRUE(in.ReadDocument(L"d", text));
    EXPECT_EQ(declaration + L"<MFilerTaggedXml><v/><!--c-->t</MFilerTaggedXml>\n", text.c_str());
}

TEST(MOutFilerTaggedXml, TagIsANameOrRefused)
{
    const std::vector<std::wstring> tags[] = {
        {L"", L"-a", L"9", L"a b", L"a>", L"a/", L"a=", L"\x301", L"\xD7", L"a\xF7",
         L"\xDF43\xD83C", L"a\xD83C", L"a\xD83Cz", L"\xFFFE", L"\xDB80\xDC00"},
        {L"a-b.c:9\xB7\x301", L"_\xD83C\xDF43\x4E2D", L":\xDB7F\xDFFF"}};
    MOutFilerTaggedXml filer(L"r", nullptr);
    for (const bool isName : {false, true}) {
        for (const std::wstring& text : tags[isName]) {
            const MString tag(text.c_str());
            for (const bool taken :
                 {filer.WriteByte(tag, 1), filer.WriteDocument(tag, L"<r/>"), filer.BeginGroup(tag),
                  MOutFilerTaggedXml(tag.c_str(), L"").EndGroup()})
                EXPECT_EQ(isName, taken) << text;
        }
        EXPECT_EQ(isName, TextOf(filer) != declaration + L"<r/>\n");
    }
    EXPECT_TRUE(MInFilerTaggedXml(TextOf(filer).c_str(), L"r", L"").IsOpen());
    MString text;
    EXPECT_FALSE(MOutFilerTaggedXml(nullptr, L"n").GetDocumentText(&text));
}

TEST(MOutFilerTaggedXml, ProcessLocaleIsLeftAlone)
{
    ASSERT_NE(nullptr, setlocale(LC_ALL, "German"));
    std::thread filing([] {
        for (int i = 0; i < 2000; ++i)
            MOutFilerTaggedXml(L"r", nullptr).WriteFloat(L"v", 1500000);
    });
    int wrong = 0;
    for (int i = 0; i < 20000; ++i)
        wrong += *localeconv()->decimal_point != ',';
    filing.join();
    setlocale(LC_ALL, "C");
    EXPECT_EQ(0, wrong);
}

TEST(MInFilerTaggedXml, ReadsInOrderByTheRulesOfEachType)
{
    // What readers are asked, and what they tell; see `PlayOnFilers`.
    const struct {
        std::wstring content;
        const char* operations;
        const wchar_t* told;
    } cases[] = {
        {L"<v type='int'> -12abc</v>", "Iv", L"-12;"},
        {L"<v type='int'/>", "Iv", L"(1);"},
        {L"<v type='int'>2147483648</v>", "Iv", L"(2147483647);"},
        {L"<v type='int'>-70000</v>", "iv", L"(-32768);"},
        {L"<v type='uint'>70000</v>", "uv", L"(65535);"},
        {L"<v type='byte'>300</v><v type='byte'>70000</v>", "yv;yv", L"44;(255);"},
        {L"<v type='byte'>2</v>", "bv;cv;Uv;yv", L"(1);(1);(1);2;"},
        {L"<v type='bool'>2</v><v type='bool'>true</v>", "bv;bv", L"1;(0);"},
        {L"<v type='char'> </v><v type='char'> &#x141;b</v>", "cv;cv", L"(1);65;"},
        {L"<v type='float'>Infinity</v><v type='float'>-1e999</v>", "dv;dv", L"(1);-inf;"},
        {L"<v type='float'>-2.5e1x</v>", "fv", L"-25;"},
        {L"<v type='string'/>", "sv", L";"}, // a value like any other
        // A mismatch leaves the element next, a failed conversion passes it.
        {L"<v type='float'>7</v><w type='int'>x</w><w type='int'>2</w>", "Iv;Iw;dV;dv;Iw;Iw;Iw",
         L"(1);(1);(1);7;(0);2;(1);"},
        {L"<d type='int'>0</d><d/><w type='int'>2</w>", "Dd;Iw;Dd;ss",
         L"document;2;(document);(default);"},
        {L"<d a='" + std::wstring(0x100000, L'<') + L"'>x</d><w type='int'>2</w>", "Dd;Iw",
         L"(document);(1);"}, // the start tag is beyond what a record holds
        // Groups are found forward only, and nothing is passed if they are not.
        {L"<g type='int'>4</g><a><v type='int'>2</v></a><g><v type='int'>3</v><w/></g>"
         L"<v type='int'>5</v>",
         "(G;(v;Ig;(g;Iv;(a;);(a;(g;Iv;);)", L"(in);(in);4;in;3;(in);out;(in);(in);5;out;(out);"},
    };
    for (const auto& one : cases) {
        std::wstring told;
        EXPECT_EQ("", PlayFilerInput(L"<r>" + one.content + L"</r>", one.operations, &told));
        EXPECT_EQ(one.told, told) << one.content;
    }
}

TEST(MInFilerTaggedXml, TakesDocumentsOfItsRootAndNameSpace)
{
    const auto opens = [](const wchar_t* text, const wchar_t* rootTag, const wchar_t* nameSpace) {
        return MInFilerTaggedXml(text, rootTag, nameSpace).IsOpen();
    };
    const wchar_t good[] = L"<r xmlns='n'><v/></r>";
    EXPECT_TRUE(opens(good, L"r", nullptr) && opens(good, nullptr, L"") && opens(good, L"", L"n"));
    EXPECT_FALSE(opens(good, L"r", L"N") || opens(good, L"R", nullptr) || opens(L"", L"", L""));
    EXPECT_FALSE(opens(L"<r/>", L"r", L"n") || opens(L"<r/><r/>", L"r", nullptr));
}

TEST(MInFilerTaggedXml, HostileTextBreaksNoRuleOfReading)
{
    for (unsigned number = 0; number < 3000; ++number) {
        std::wstring document;
        std::string operations;
        MakeFilerInput(number, document, operations);
        ASSERT_EQ("", PlayFilerInput(document, operations)) << document << "\n" << operations;
    }
}
