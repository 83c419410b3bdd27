#include "filers/MOutFilerTaggedXml.h"

#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <atomic>
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

/// The element that one write makes.
template <class Write>
std::wstring Filed(Write write)
{
    MOutFilerTaggedXml filer(L"r", nullptr);
    EXPECT_TRUE(write(filer));
    const std::wstring text = TextOf(filer);
    const std::size_t start = declaration.size() + 4;   // "<r>\n"
    return text.substr(start, text.size() - start - 6); // "\n</r>\n"
}

} // namespace

TEST(MOutFilerTaggedXml, DocumentHasItsFormToTheCharacter)
{
    MOutFilerTaggedXml filer(L"Settings", nullptr);
    EXPECT_EQ(declaration + L"<Settings/>\n", TextOf(filer));
    EXPECT_TRUE(filer.WriteInt32(L"Count", 42));
    EXPECT_TRUE(filer.WriteString(L"Title", L"a<b"));
    EXPECT_TRUE(filer.BeginGroup(L"Window"));
    EXPECT_TRUE(filer.WriteDouble(L"Ratio", 2.5));
    EXPECT_TRUE(filer.WriteBool(L"Open", true));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_TRUE(filer.WriteFloat(L"Scale", 0.5));
    EXPECT_EQ(declaration + L"<Settings>\n"
                            L"<Count type=\"int\">42</Count>\n"
                            L"<Title type=\"string\">a&lt;b</Title>\n"
                            L"<Window>\n"
                            L"<Ratio type=\"float\">2.500000000000000e+00</Ratio>\n"
                            L"<Open type=\"bool\">1</Open>\n"
                            L"</Window>\n"
                            L"<Scale type=\"float\">5.00000000e-01</Scale>\n"
                            L"</Settings>\n",
              TextOf(filer));
}

TEST(MOutFilerTaggedXml, EveryTypeHasItsFamilyAndText)
{
    typedef MOutFilerTaggedXml F;
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        std::wstring filed;
        const wchar_t* expected;
    } cases[] = {
        {Filed([](F& f) { return f.WriteChar(L"v", 'c'); }), L"<v type=\"char\">c</v>"},
        {Filed([](F& f) { return f.WriteChar(L"v", '\0'); }), L"<v type=\"char\"/>"},
        {Filed([](F& f) { return f.WriteString(L"v", L""); }), L"<v type=\"string\"/>"},
        {Filed([](F& f) { return f.WriteByte(L"v", 200); }), L"<v type=\"byte\">200</v>"},
        {Filed([](F& f) { return f.WriteBool(L"v", false); }), L"<v type=\"bool\">0</v>"},
        {Filed([](F& f) { return f.WriteUInt16(L"v", 65535); }), L"<v type=\"uint\">65535</v>"},
        {Filed([](F& f) { return f.WriteInt16(L"v", -32768); }), L"<v type=\"int\">-32768</v>"},
        {Filed([](F& f) { return f.WriteUInt32(L"v", 4294967295u); }),
         L"<v type=\"uint\">4294967295</v>"},
        {Filed([](F& f) { return f.WriteInt32(L"v", -2147483647 - 1); }),
         L"<v type=\"int\">-2147483648</v>"},
        {Filed([=](F& f) { return f.WriteDouble(L"v", -infinity); }),
         L"<v type=\"float\">-inf</v>"},
        {Filed([](F& f) { return f.BeginGroup(L"v"); }), L"<v/>"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one.expected, one.filed);
}

TEST(MOutFilerTaggedXml, NameSpaceStandsOnTheRoot)
{
    EXPECT_EQ(declaration + L"<r xmlns=\"urn:&lt;1&gt;\"/>\n",
              TextOf(MOutFilerTaggedXml(L"r", L"urn:<1>")));
    EXPECT_EQ(declaration + L"<r/>\n", TextOf(MOutFilerTaggedXml(L"r", L"")));
}

TEST(MOutFilerTaggedXml, OneEndTooManyLeavesTheRoot)
{
    MOutFilerTaggedXml filer(L"r", nullptr);
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_FALSE(filer.EndGroup());
    EXPECT_TRUE(filer.WriteInt32(L"v", 1));
    EXPECT_EQ(declaration + L"<r/>\n<v type=\"int\">1</v>\n", TextOf(filer));
    EXPECT_FALSE(filer.GetDocumentText(nullptr));
}

TEST(MOutFilerTaggedXml, EmbeddedDocumentTakesTheTag)
{
    MOutFilerTaggedXml filer(L"r", nullptr);
    EXPECT_TRUE(filer.WriteDocument(
        L"d", L"<?xml version=\"1.0\"?><root a=\"b\"><v type=\"int\">1</v><!--c-->t</root>"));
    EXPECT_FALSE(filer.WriteDocument(L"e", L"<root>"));
    EXPECT_TRUE(filer.WriteInt32(L"v", 2));
    EXPECT_EQ(declaration + L"<r>\n<d><v type=\"int\">1</v><!--c-->t</d>\n"
                            L"<v type=\"int\">2</v>\n</r>\n",
              TextOf(filer));
}

TEST(MOutFilerTaggedXml, ProcessLocaleDoesNotShowAndIsLeftAlone)
{
    const std::string before = setlocale(LC_ALL, nullptr);
    ASSERT_NE(nullptr, setlocale(LC_ALL, "German"));
    std::atomic<int> wrong{0};
    std::thread filing([&] {
        for (int i = 0; i < 2000; ++i)
            wrong += L"<v type=\"float\">1.50000000e+06</v>" !=
                     Filed([](MOutFilerTaggedXml& f) { return f.WriteFloat(L"v", 1500000); });
    });
    for (int i = 0; i < 20000; ++i)
        wrong += *localeconv()->decimal_point != ',';
    filing.join();
    setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(0, wrong);
}

TEST(MOutFilerTaggedXml, LackOfMemoryLeavesByException)
{
    const MString title(L"a title of more than a few characters");
    const auto file = [&] {
        MOutFilerTaggedXml filer(L"Root", L"urn:name");
        filer.WriteDouble(L"Ratio", 1.0 / 3);
        filer.WriteInt32(L"Number", -1234567890);
        filer.BeginGroup(L"Group");
        filer.WriteDocument(L"Document", L"<root><value>some text in here</value></root>");
        filer.EndGroup();
        filer.WriteString(L"Title", title);
        MString text;
        filer.GetDocumentText(&text);
    };
    file();
    ForEachFailingAllocation(AllocationFailure::Throws, file, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}
