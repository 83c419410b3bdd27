#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "fuzz/FilersHarness.h"
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

MString Document(const std::wstring& content)
{
    return (L"<r>" + content + L"</r>").c_str();
}

/// Expects a value to be read so; the default is 77.
template <class T, class Read>
void ExpectRead(Read read, const wchar_t* family, const wchar_t* text, bool isRead, T value)
{
    MInFilerTaggedXml filer(Document(std::wstring(L"<v type='") + family + L"'>" + text + L"</v>"),
                            L"r", nullptr);
    T result = 5;
    EXPECT_FALSE((filer.*read)(L"v", nullptr, static_cast<T>(77))); // and passes nothing
    EXPECT_EQ(isRead, (filer.*read)(L"v", &result, static_cast<T>(77))) << family << text;
    EXPECT_EQ(value, result) << family << text;
}

int NextInt(MInFilerTaggedXml& filer, const wchar_t* tag)
{
    int value = 0;
    filer.ReadInt32(tag, &value, -1);
    return value;
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
    EXPECT_TRUE(filer.WriteBool(L"v", true) && filer.WriteByte(L"v", 200));
    EXPECT_TRUE(filer.WriteUInt16(L"v", 65535) && filer.WriteUInt32(L"v", 4294967295u));
    EXPECT_TRUE(filer.WriteInt16(L"v", -32768) && filer.WriteInt32(L"v", 42) && filer.EndGroup());
    EXPECT_FALSE(filer.EndGroup());
    EXPECT_TRUE(filer.WriteDouble(L"v", -std::numeric_limits<double>::infinity()));
    EXPECT_EQ(declaration + L"<r xmlns=\"urn:&lt;1&gt;\">\n"
                            L"<v type=\"char\">c</v>\n<v type=\"char\"/>\n"
                            L"<v type=\"string\">a&lt;b</v>\n<v type=\"string\"/>\n"
                            L"<g>\n<empty/>\n<v type=\"float\">2.500000000000000e+00</v>\n"
                            L"<v type=\"float\">-5.00000000e-01</v>\n</g>\n"
                            L"<v type=\"bool\">1</v>\n<v type=\"byte\">200</v>\n"
                            L"<v type=\"uint\">65535</v>\n<v type=\"uint\">4294967295</v>\n"
                            L"<v type=\"int\">-32768</v>\n<v type=\"int\">42</v>\n</r>\n"
                            L"<v type=\"float\">-inf</v>\n", // one end too many leaves the root
              TextOf(filer));
    EXPECT_FALSE(filer.GetDocumentText(nullptr));
}

TEST(MOutFilerTaggedXml, ProcessLocaleDoesNotShowAndIsLeftAlone)
{
    const std::string before = setlocale(LC_ALL, nullptr);
    ASSERT_NE(nullptr, setlocale(LC_ALL, "German"));
    std::atomic<int> wrong{0};
    std::thread filing([&] {
        for (int i = 0; i < 2000; ++i) {
            MOutFilerTaggedXml filer(L"r", nullptr);
            filer.WriteFloat(L"v", 1500000);
            wrong += TextOf(filer).find(L">1.50000000e+06<") == std::wstring::npos;
        }
    });
    for (int i = 0; i < 20000; ++i)
        wrong += *localeconv()->decimal_point != ',';
    filing.join();
    setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(0, wrong);
}

TEST(MInFilerTaggedXml, ConvertsByTheRulesOfEachType)
{
    typedef IInFilerTagged In;
    const double infinity = std::numeric_limits<double>::infinity();
    ExpectRead<int>(&In::ReadInt32, L"int", L" -12abc", true, -12);
    ExpectRead<int>(&In::ReadInt32, L"int", L"x", false, 0);
    ExpectRead<int>(&In::ReadInt32, L"int", L"", false, 77);
    ExpectRead<int>(&In::ReadInt32, L"int", L"2147483648", false, 2147483647);
    ExpectRead<unsigned>(&In::ReadUInt32, L"uint", L"99999999999", false, 4294967295u);
    ExpectRead<unsigned short>(&In::ReadUInt16, L"uint", L"70000", false, 65535);
    ExpectRead<unsigned char>(&In::ReadByte, L"byte", L"300", true, 44);
    ExpectRead<unsigned char>(&In::ReadByte, L"byte", L"70000", false, 255);
    ExpectRead<bool>(&In::ReadBool, L"bool", L"2", true, true);
    ExpectRead<bool>(&In::ReadBool, L"bool", L"true", false, false);
    ExpectRead<char>(&In::ReadChar, L"char", L" ", false, 77);
    ExpectRead<char>(&In::ReadChar, L"char", L"&#0;", false, 77);
    ExpectRead<char>(&In::ReadChar, L"char", L" &#x141;b", true, 0x41);
    ExpectRead<double>(&In::ReadDouble, L"float", L"", false, 77);
    ExpectRead<double>(&In::ReadDouble, L"float", L"Infinity", false, 77);
    ExpectRead<double>(&In::ReadDouble, L"float", L"1e999", true, infinity);
    ExpectRead<float>(&In::ReadFloat, L"float", L"-2.5e1x", true, -25);
    ExpectRead<float>(&In::ReadFloat, L"float", L"-1e300", true, static_cast<float>(-infinity));
}

TEST(MInFilerTaggedXml, MismatchLeavesTheElementNextAndAFailedConversionPassesIt)
{
    MInFilerTaggedXml filer(Document(L"<v type='float'>1</v><w type='int'>x</w>"
                                     L"<w type='int'>2</w><s type='string'/>"),
                            L"r", nullptr);
    EXPECT_EQ(-1, NextInt(filer, L"v"));
    EXPECT_EQ(-1, NextInt(filer, L"w")); // blocked by the one before it
    double value = 0;
    EXPECT_FALSE(filer.ReadDouble(L"V", &value, 0));
    EXPECT_TRUE(filer.ReadDouble(L"v", &value, 0));
    EXPECT_EQ(0, NextInt(filer, L"w"));
    EXPECT_EQ(2, NextInt(filer, L"w"));
    EXPECT_EQ(-1, NextInt(filer, L"w"));
    MString text;
    EXPECT_TRUE(filer.ReadString(L"s", text, L"default"));
    EXPECT_TRUE(text.IsEmpty()); // a value like any other
}

TEST(MInFilerTaggedXml, GroupsAreFoundForwardOnly)
{
    MInFilerTaggedXml filer(Document(L"<g type='int'>1</g><a><v type='int'>2</v></a>"
                                     L"<g><v type='int'>3</v><v type='int'>4</v></g><h/>"
                                     L"<v type='int'>5</v>"),
                            L"r", nullptr);
    EXPECT_FALSE(filer.BeginGroup(L"G"));
    EXPECT_FALSE(filer.BeginGroup(L"v")); // there as a value only
    EXPECT_EQ(1, NextInt(filer, L"g"));   // nothing was passed
    EXPECT_TRUE(filer.BeginGroup(L"g"));
    EXPECT_EQ(3, NextInt(filer, L"v"));
    EXPECT_FALSE(filer.BeginGroup(L"a"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_FALSE(filer.BeginGroup(L"a") || filer.BeginGroup(L"g"));
    EXPECT_TRUE(filer.BeginGroup(L"h"));
    EXPECT_EQ(-1, NextInt(filer, L"v"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_EQ(5, NextInt(filer, L"v"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_FALSE(filer.EndGroup());
}

TEST(MInFilerTaggedXml, WrongDocumentGivesDefaults)
{
    const auto accepts = [](const wchar_t* text, const wchar_t* rootTag, const wchar_t* nameSpace) {
        MInFilerTaggedXml filer(text, rootTag, nameSpace);
        MString result;
        const bool accepted = NextInt(filer, L"v") == 1;
        EXPECT_FALSE(filer.ReadString(L"s", result, L"default"));
        EXPECT_STREQ(L"default", result.c_str());
        EXPECT_EQ(accepted, filer.EndGroup());
        EXPECT_FALSE(filer.BeginGroup(L"g") || filer.ReadDocument(L"g", result));
        return accepted;
    };
    const wchar_t named[] = L"<r xmlns='n'><v type='int'>1</v></r>";
    EXPECT_TRUE(accepts(named, L"r", nullptr) && accepts(named, nullptr, L""));
    EXPECT_TRUE(accepts(named, L"", L"n"));
    EXPECT_FALSE(accepts(named, L"r", L"N") || accepts(named, L"R", nullptr));
    EXPECT_FALSE(accepts(L"<r><v type='int'>1</v></r>", L"r", L"n"));
    EXPECT_FALSE(accepts(L"<r><v type='int'>1</v></r><r/>", L"r", nullptr));
    EXPECT_FALSE(accepts(L"<r><v type='int'>1</v>", L"r", nullptr) || accepts(L"", L"", L""));
}

TEST(XmlFilers, EmbeddedDocumentTakesTheTagAndIsReadByAFilerOfItsOwn)
{
    MOutFilerTaggedXml out(L"r", nullptr);
    EXPECT_TRUE(out.WriteInt32(L"d", 0));
    EXPECT_TRUE(out.WriteDocument(
        L"d", L"<?xml version=\"1.0\"?><root a=\"b\"><v type=\"int\">1</v><!--c-->t</root>"));
    EXPECT_FALSE(out.WriteDocument(L"e", L"<root>"));
    EXPECT_TRUE(out.WriteInt32(L"w", 2));
    EXPECT_EQ(declaration + L"<r>\n<d type=\"int\">0</d>\n<d><v type=\"int\">1</v><!--c-->t</d>\n"
                            L"<w type=\"int\">2</w>\n</r>\n",
              TextOf(out));

    MInFilerTaggedXml in(TextOf(out).c_str(), L"r", nullptr);
    MString text;
    EXPECT_TRUE(in.ReadDocument(L"d", text));
    EXPECT_EQ(declaration + L"<MFilerTaggedXml><v type=\"int\">1</v><!--c-->t</MFilerTaggedXml>\n",
              text.c_str());
    MInFilerTaggedXml embedded(text, L"MFilerTaggedXml", nullptr);
    EXPECT_EQ(1, NextInt(embedded, L"v"));
    EXPECT_FALSE(in.ReadDocument(L"d", text));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(2, NextInt(in, L"w"));
}

TEST(XmlFilers, HostileTextBreaksNoRuleOfReading)
{
    for (unsigned number = 0; number < 3000; ++number) {
        std::wstring document;
        std::string operations;
        MakeFilerInput(number, document, operations);
        ASSERT_EQ("", PlayFilerInput(document, operations)) << document << "\n" << operations;
    }
}

TEST(XmlFilers, LackOfMemoryLeavesByException)
{
    const auto fileAndRead = [] {
        MOutFilerTaggedXml out(L"Root", L"urn:name");
        MString text;
        out.BeginGroup(L"g") && out.WriteDouble(L"v", 1.0 / 3) && out.EndGroup();
        out.WriteDocument(L"d", L"<root>some text in here</root>") && out.WriteUInt32(L"n", 12345);
        out.GetDocumentText(&text);
        MInFilerTaggedXml in(text, L"Root", L"urn:name");
        double value = 0;
        unsigned int number = 0;
        in.BeginGroup(L"g") && in.ReadDouble(L"v", &value, 0) && in.EndGroup();
        in.ReadDocument(L"d", text) && in.ReadUInt32(L"n", &number, 0);
        EXPECT_EQ(12345u, number);
    };
    ForEachFailingAllocation(AllocationFailure::Throws, fileAndRead, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}
