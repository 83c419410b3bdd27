#include "filers/MInFilerTaggedXml.h"

#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

MString Document(const std::wstring& content)
{
    return (L"<r>" + content + L"</r>").c_str();
}

MString Value(const wchar_t* family, const wchar_t* text)
{
    return Document(std::wstring(L"<v type='") + family + L"'>" + text + L"</v>");
}

int NextInt(MInFilerTaggedXml& filer, const wchar_t* tag)
{
    int value = 0;
    filer.ReadInt32(tag, &value, -1);
    return value;
}

} // namespace

TEST(MInFilerTaggedXml, ConvertsByTheRulesOfEachType)
{
    const struct {
        const wchar_t* family;
        const wchar_t* text;
        bool read;
        double value; // what the result holds; the default is 77
    } cases[] = {
        {L"int", L"12abc", true, 12},
        {L"int", L" -5", true, -5},
        {L"int", L"x", false, 0},
        {L"int", L"", false, 77},
        {L"int", L"40000", true, 40000},
        {L"int", L"2147483648", false, 2147483647},
        {L"byte", L"300", true, 44},
        {L"byte", L"x", false, 0},
        {L"byte", L"70000", false, 255},
        {L"bool", L"2", true, 1},
        {L"bool", L"true", false, 0},
        {L"bool", L"0", true, 0},
        {L"char", L" ", false, 77},
        {L"char", L"", false, 77},
        {L"char", L"&#x141;", true, 0x41},
        {L"char", L"&#0;", false, 77},
        {L"char", L" ab", true, 'a'},
        {L"float", L"1.#X", true, 1},
        {L"float", L"", false, 77},
        {L"float", L"Infinity", false, 77},
        {L"float", L"-2.5e1x", true, -25},
        {L"uint", L"4294967295", true, 4294967295.0},
        {L"uint", L"99999999999", false, 4294967295.0},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::wstring(one.family) + L" " + one.text);
        MInFilerTaggedXml filer(Value(one.family, one.text), L"r", nullptr);
        const std::wstring family = one.family;
        bool read = false;
        double value = 0;
        const auto convert = [&](auto result, auto readValue) {
            read = readValue(&result);
            value = static_cast<double>(result);
        };
        if (family == L"int")
            convert(0, [&](int* v) { return filer.ReadInt32(L"v", v, 77); });
        else if (family == L"uint")
            convert(0u, [&](unsigned* v) { return filer.ReadUInt32(L"v", v, 77); });
        else if (family == L"byte")
            convert(static_cast<unsigned char>(0),
                    [&](unsigned char* v) { return filer.ReadByte(L"v", v, 77); });
        else if (family == L"bool")
            convert(false, [&](bool* v) { return filer.ReadBool(L"v", v, true); });
        else if (family == L"char")
            convert('\0', [&](char* v) { return filer.ReadChar(L"v", v, 77); });
        else
            convert(0.0, [&](double* v) { return filer.ReadDouble(L"v", v, 77); });
        EXPECT_EQ(one.read, read);
        EXPECT_EQ(one.value, value);
    }
}

TEST(MInFilerTaggedXml, FamiliesJoinTheWidths)
{
    short small = 0;
    unsigned short unsignedSmall = 0;
    EXPECT_TRUE(
        MInFilerTaggedXml(Value(L"int", L"-32768"), L"r", nullptr).ReadInt16(L"v", &small, 1));
    EXPECT_EQ(-32768, small);
    EXPECT_FALSE(MInFilerTaggedXml(Value(L"uint", L"70000"), L"r", nullptr)
                     .ReadUInt16(L"v", &unsignedSmall, 1));
    EXPECT_EQ(65535, unsignedSmall);

    float narrow = 0;
    EXPECT_TRUE(MInFilerTaggedXml(Value(L"float", L"1.#QNAN00"), L"r", nullptr)
                    .ReadFloat(L"v", &narrow, 1));
    EXPECT_TRUE(std::isnan(narrow));
    EXPECT_TRUE(
        MInFilerTaggedXml(Value(L"float", L"-1.#INF"), L"r", nullptr).ReadFloat(L"v", &narrow, 1));
    EXPECT_EQ(-std::numeric_limits<float>::infinity(), narrow);
    EXPECT_TRUE(
        MInFilerTaggedXml(Value(L"float", L"-1e300"), L"r", nullptr).ReadFloat(L"v", &narrow, 1));
    EXPECT_EQ(-std::numeric_limits<float>::infinity(), narrow);
}

TEST(MInFilerTaggedXml, NullResultPassesNothing)
{
    MInFilerTaggedXml filer(Value(L"float", L"1.5"), L"r", nullptr);
    EXPECT_FALSE(filer.ReadDouble(L"v", nullptr, 0));
    EXPECT_FALSE(filer.ReadFloat(L"v", nullptr, 0));
    EXPECT_FALSE(filer.ReadInt16(L"v", nullptr, 0));
    EXPECT_FALSE(filer.ReadBool(L"v", nullptr, false));
    double value = 0;
    EXPECT_TRUE(filer.ReadDouble(L"v", &value, 0));
    EXPECT_EQ(1.5, value);
}

TEST(MInFilerTaggedXml, MismatchLeavesTheElementNext)
{
    MInFilerTaggedXml filer(Document(L"<v type='float'>1</v><w type='int'>2</w>x"), L"r", nullptr);
    int number = 0;
    EXPECT_FALSE(filer.ReadInt32(L"v", &number, 9));
    EXPECT_EQ(9, number);
    EXPECT_EQ(-1, NextInt(filer, L"V"));
    EXPECT_EQ(-1, NextInt(filer, L"w")); // blocked by the one before it
    double value = 0;
    EXPECT_TRUE(filer.ReadDouble(L"v", &value, 0));
    EXPECT_EQ(2, NextInt(filer, L"w"));
    EXPECT_EQ(-1, NextInt(filer, L"w"));
}

TEST(MInFilerTaggedXml, FailedConversionHasPassedTheValue)
{
    MInFilerTaggedXml filer(Document(L"<v type='int'>x</v><v type='int'>2</v>"), L"r", nullptr);
    int number = 0;
    EXPECT_FALSE(filer.ReadInt32(L"v", &number, 9));
    EXPECT_EQ(2, NextInt(filer, L"v"));
}

TEST(MInFilerTaggedXml, GroupsAreFoundForwardOnly)
{
    const MString text = Document(L"<g type='int'>1</g><a><v type='int'>2</v></a><g>"
                                  L"<v type='int'>3</v><v type='int'>4</v></g><h/>"
                                  L"<v type='int'>5</v>");
    MInFilerTaggedXml filer(text, L"r", nullptr);
    EXPECT_FALSE(filer.BeginGroup(L"G"));
    EXPECT_TRUE(filer.BeginGroup(L"g"));
    EXPECT_EQ(3, NextInt(filer, L"v"));
    EXPECT_FALSE(filer.BeginGroup(L"a"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_FALSE(filer.BeginGroup(L"a"));
    EXPECT_FALSE(filer.BeginGroup(L"g"));
    EXPECT_TRUE(filer.BeginGroup(L"h"));
    EXPECT_EQ(-1, NextInt(filer, L"v"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_EQ(5, NextInt(filer, L"v"));
    EXPECT_TRUE(filer.EndGroup());
    EXPECT_FALSE(filer.EndGroup());

    MInFilerTaggedXml again(text, L"r", nullptr);
    EXPECT_FALSE(again.BeginGroup(L"v")); // there as a value only
    EXPECT_EQ(1, NextInt(again, L"g"));
}

TEST(MInFilerTaggedXml, WrongDocumentGivesDefaults)
{
    const struct {
        const wchar_t* text;
        const wchar_t* rootTag;
        const wchar_t* nameSpace;
        bool accepted;
    } cases[] = {
        {L"<r xmlns='n'><v type='int'>1</v></r>", L"r", nullptr, true},
        {L"<r xmlns='n'><v type='int'>1</v></r>", nullptr, L"", true},
        {L"<r xmlns='n'><v type='int'>1</v></r>", L"", L"n", true},
        {L"<r xmlns='n'><v type='int'>1</v></r>", L"r", L"N", false},
        {L"<r><v type='int'>1</v></r>", L"r", L"n", false},
        {L"<r><v type='int'>1</v></r>", L"R", nullptr, false},
        {L"<r><v type='int'>1</v></r><r/>", L"r", nullptr, false},
        {L"<r><v type='int'>1</v>", L"r", nullptr, false},
        {L"", nullptr, nullptr, false},
    };
    for (const auto& one : cases) {
        MInFilerTaggedXml filer(one.text, one.rootTag, one.nameSpace);
        int number = 0;
        MString text;
        EXPECT_EQ(one.accepted, filer.ReadInt32(L"v", &number, 9)) << one.text;
        EXPECT_EQ(one.accepted ? 1 : 9, number);
        EXPECT_FALSE(filer.ReadString(L"s", text, L"default"));
        EXPECT_STREQ(L"default", text.c_str());
        EXPECT_EQ(one.accepted, filer.EndGroup());
        EXPECT_FALSE(filer.BeginGroup(L"g"));
        EXPECT_FALSE(filer.ReadDocument(L"g", text));
    }
}

TEST(MInFilerTaggedXml, EmptyTextIsAValue)
{
    MInFilerTaggedXml filer(Document(L"<v type='string'/>"), L"r", nullptr);
    MString text;
    EXPECT_TRUE(filer.ReadString(L"v", text, L"default"));
    EXPECT_TRUE(text.IsEmpty());
}

TEST(MInFilerTaggedXml, EmbeddedDocumentIsReadByAFilerOfItsOwn)
{
    MInFilerTaggedXml filer(Document(L"<d type='int'>0</d><x/><d a='b'><v type='int'>1</v></d>"
                                     L"<w type='int'>2</w>"),
                            L"r", nullptr);
    MString text;
    EXPECT_TRUE(filer.ReadDocument(L"d", text));
    EXPECT_STREQ(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 L"<MFilerTaggedXml><v type='int'>1</v></MFilerTaggedXml>\n",
                 text.c_str());
    MInFilerTaggedXml embedded(text, L"MFilerTaggedXml", nullptr);
    EXPECT_EQ(1, NextInt(embedded, L"v"));
    EXPECT_FALSE(filer.ReadDocument(L"d", text));
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(2, NextInt(filer, L"w"));
}

TEST(MInFilerTaggedXml, LackOfMemoryLeavesByException)
{
    const MString text = Document(L"<g><v type='float'>1.5</v><w type='uint'>12345678901</w></g>"
                                  L"<d><x/></d><s type='string'>more than a few letters</s>");
    const auto read = [&] {
        MInFilerTaggedXml filer(text, L"r", nullptr);
        double value;
        unsigned int number;
        MString result;
        filer.BeginGroup(L"g");
        filer.ReadDouble(L"v", &value, 0);
        filer.ReadUInt32(L"w", &number, 0);
        filer.EndGroup();
        filer.ReadDocument(L"d", result);
        filer.ReadString(L"s", result, L"some default or other");
    };
    read();
    ForEachFailingAllocation(AllocationFailure::Throws, read, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}
