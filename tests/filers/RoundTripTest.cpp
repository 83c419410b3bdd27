#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cmath>
#include <cstring>
#include <cwctype>
#include <limits>
#include <random>

namespace
{

typedef IOutFilerTagged Out;
typedef IInFilerTagged In;

struct Xml : MOutFilerTaggedXml {
    Xml() : MOutFilerTaggedXml(L"r", nullptr) {}

    std::unique_ptr<In> Reader() const
    {
        MString text;
        GetDocumentText(&text);
        return std::unique_ptr<In>(new MInFilerTaggedXml(text, L"r", nullptr));
    }
};

struct Registry : IOutFilerTaggedRegistry {
    Registry() : IOutFilerTaggedRegistry(L"RoundTripTest") {}
    ~Registry() override
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\RoundTripTest");
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
    }

    std::unique_ptr<In> Reader() const
    {
        return std::unique_ptr<In>(new IInFilerTaggedRegistry(L"RoundTripTest", false));
    }
};

MString TagOf(std::size_t number)
{
    return (L"v" + std::to_wstring(number)).c_str();
}

/// What becomes of the values when they are written and read again.
template <class Filer, class T, class Write, class Read>
std::vector<T> Back(const std::vector<T>& values, Write write, Read read)
{
    Filer out;
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_TRUE((out.*write)(TagOf(i), values[i]));
    const std::unique_ptr<In> in = out.Reader();
    std::vector<T> results(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_TRUE(((*in).*read)(TagOf(i), &results[i], T{})) << values[i];
    return results;
}

template <class T, class Write, class Read>
void ExpectIntegersBack(Write write, Read read)
{
    typedef std::numeric_limits<T> Limits;
    std::vector<T> values = {Limits::min(), Limits::max(), 0, 1, static_cast<T>(-1)};
    std::mt19937 random(1);
    for (int i = 0; i < 50; ++i)
        values.push_back(static_cast<T>(random()));
    EXPECT_EQ(values, (Back<Xml>(values, write, read)));
    EXPECT_EQ(values, (Back<Registry>(values, write, read)));
}

/// Numbers of random digits for every `step`th exponent from the denormals on, with both signs.
template <class T>
std::vector<T> FiniteNumbers(int step)
{
    typedef std::numeric_limits<T> Limits;
    std::mt19937 random(2);
    std::uniform_real_distribution<T> mantissa(0.5, 1);
    std::vector<T> values = {0, static_cast<T>(-0.0), Limits::denorm_min()};
    const int lowest = Limits::min_exponent - Limits::digits;
    for (int exponent = lowest; exponent <= Limits::max_exponent; exponent += step) {
        values.push_back(std::ldexp(mantissa(random), exponent));
        values.push_back(-values.back());
    }
    return values;
}

/// Expects each result to be near to its value, up to a part of the value.
template <class T>
void ExpectClose(const std::vector<T>& values, const std::vector<T>& results, double part)
{
    const double least = static_cast<double>(std::numeric_limits<T>::denorm_min());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value = static_cast<double>(values[i]);
        EXPECT_NEAR(value, static_cast<double>(results[i]), std::fabs(value) * part + least);
        EXPECT_EQ(std::signbit(values[i]), std::signbit(results[i]));
    }
}

template <class Filer>
void ExpectTextsBack()
{
    std::wstring all;
    for (int unit = 1; unit < 0x10000; ++unit)
        all += static_cast<wchar_t>(unit);
    for (const wchar_t* text :
         {all.c_str(), L"", L" ", L"]]>", L"<![CDATA[x]]>", L"&lt;&#65;", L"\r\n a\t\r\n"}) {
        Filer out;
        MString result;
        EXPECT_TRUE(out.WriteString(L"v", text));
        EXPECT_TRUE(out.Reader()->ReadString(L"v", result, L"default"));
        EXPECT_STREQ(text, result.c_str());
    }
}

} // namespace

TEST(RoundTrip, IntegersAndCharactersAreKept)
{
    ExpectIntegersBack<unsigned char>(&Out::WriteByte, &In::ReadByte);
    ExpectIntegersBack<unsigned short>(&Out::WriteUInt16, &In::ReadUInt16);
    ExpectIntegersBack<short>(&Out::WriteInt16, &In::ReadInt16);
    ExpectIntegersBack<unsigned int>(&Out::WriteUInt32, &In::ReadUInt32);
    ExpectIntegersBack<int>(&Out::WriteInt32, &In::ReadInt32);
    std::vector<char> characters;
    for (int code = 1; code < 256; ++code)
        if (!std::iswspace(static_cast<std::wint_t>(code)))
            characters.push_back(static_cast<char>(code));
    EXPECT_EQ(characters, (Back<Xml>(characters, &Out::WriteChar, &In::ReadChar)));
    characters.insert(characters.end(), {'\0', ' ', '\n', '\x85', '\xA0'});
    EXPECT_EQ(characters, (Back<Registry>(characters, &Out::WriteChar, &In::ReadChar)));
}

TEST(RoundTrip, FloatsKeepTheirBitsInXmlAndSevenDigitsInTheRegistry)
{
    const auto values = FiniteNumbers<float>(1);
    const auto results = Back<Xml>(values, &Out::WriteFloat, &In::ReadFloat);
    EXPECT_EQ(0, std::memcmp(values.data(), results.data(), values.size() * sizeof(float)));
    const auto some = FiniteNumbers<float>(3);
    ExpectClose(some, Back<Registry>(some, &Out::WriteFloat, &In::ReadFloat), 5.6e-7);
}

TEST(RoundTrip, DoublesKeepSixteenDigitsInXmlAndFifteenInTheRegistry)
{
    const auto values = FiniteNumbers<double>(1);
    ExpectClose(values, Back<Xml>(values, &Out::WriteDouble, &In::ReadDouble), 6.2e-16);
    const auto some = FiniteNumbers<double>(41);
    ExpectClose(some, Back<Registry>(some, &Out::WriteDouble, &In::ReadDouble), 5.2e-15);

    typedef std::numeric_limits<double> Limits;
    const double infinity = Limits::infinity();
    const std::vector<double> extremes = {infinity, -infinity, Limits::max(), Limits::quiet_NaN()};
    const auto back = Back<Xml>(extremes, &Out::WriteDouble, &In::ReadDouble);
    EXPECT_TRUE(back[0] == infinity && back[1] == -infinity && std::isnan(back[3]));
    EXPECT_EQ(infinity, back[2]); // rounded up to sixteen digits
}

TEST(RoundTrip, TextIsKept)
{
    ExpectTextsBack<Xml>();
    ExpectTextsBack<Registry>();
}
