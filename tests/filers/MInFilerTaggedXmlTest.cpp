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

const double infinity = std::numeric_limits<double>::infinity();

/// Expects a value to be read so; the default is 77.
template <class T, class Read>
void ExpectRead(Read read, const wchar_t* family, const wchar_t* text, bool isRead, T value)
{
    MInFilerTaggedXml filer(Value(family, text), L"r", nullptr);
    T result = 5;
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

TEST(MInFilerTaggedXml, ConvertsByTheRulesOfEachType)
{
    typedef IInFilerTagged In;
    ExpectRead<int>(&In::ReadInt32, L"int", L"12abc", true, 12);
    ExpectRead<int>(&In::ReadInt32, L"int", L" -5", true, -5);
    ExpectRead<int>(&In::ReadInt32, L"int", L"x", false, 0);
    ExpectRead<int>(&In::ReadInt32, L"int", L"", false, 77);
    ExpectRead<int>(&In::ReadInt32, L"int", L"2147483648", false, 2147483647);
    ExpectRead<short>(&In::ReadInt16, L"int", L"-32768", true, -32768);
    ExpectRead<unsigned>(&In::ReadUInt32, L"uint", L"4294967295", true, 4294967295u);
    ExpectRead<unsigned>(&In::ReadUInt32, L"uint", L"99999999999", false, 4294967295u);
    ExpectRead<unsigned short>(&In::ReadUInt16, L"uint", L"70000", false, 65535);
    ExpectRead<unsigned char>(&In::ReadByte, L"byte", L"300", true, 44);
    ExpectRead<unsigned char>(&In::ReadByte, L"byte", L"70000", false, 255);
    ExpectRead<unsigned char>(&In::ReadByte, L"byte", L"", false, 77);
    ExpectRead<bool>(&In::ReadBool, L"bool", L"2", true, true);
    ExpectRead<bool>(&In::ReadBool, L"bool", L"true", false, false);
    ExpectRead<char>(&In::ReadChar, L"char", L" ", false, 77);
    ExpectRead<char>(&In::ReadChar, L"char", L"&#0;", false, 77);
    ExpectRead<char>(&In::ReadChar, L"char", L" &#x141;b", true, 0x41);
    ExpectRead<double>(&In::ReadDouble, L"float", L"1.#X", true, 1);
    ExpectRead<double>(&In::ReadDouble, L"float", L"", false, 77);
    ExpectRead<double>(&In::ReadDouble, L"float", L"Infinity", false, 77);
    ExpectRead<double>(&In::ReadDouble, L"float", L"-INFINITY", true, -infinity);
    ExpectRead<double>(&In::ReadDouble, L"float", L"1e999", true, infinity);
    ExpectRead<float>(&In::ReadFloat, L"float", L"-2.5e1x", true, -25);
    ExpectRead<float>(&In::ReadFloat, L"float", L"-1.#INF", true, static_cast<float>(-infinity));
    ExpectRead<float>(&In::ReadFloat, L"float", L"-1e300", true, static_cast<float>(-infinity));
    float number = 0;
    MInFilerTaggedXml filer(Value(L"float", L"1.#QNAN00"), L"r", nullptr);
    EXPECT_TRUE(filer.ReadFloat(L"v", &number, 1));
    EXPECT_TRUE(std::isnan(number));
}

TEST(MInFilerTaggedXml, NullResultPassesNothing)
{
    MInFilerTaggedXml filer(Value(L"float", L"1.5"), L"r", nullptr);
    EXPECT_FALSE(filer.ReadDouble(L"v", nullptr, 0) || filer.ReadInt16(L"v", nullptr, 0));
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
    MInFilerTaggedXml filer(Document(L"<v type='int'>x</v><s type='string'/>"), L"r", nullptr);
    EXPECT_EQ(0, NextInt(filer, L"v"));
    MString text;
    EXPECT_TRUE(filer.ReadString(L"s", text, L"default"));
    EXPECT_TRUE(text.IsEmpty()); // a value like any other
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
