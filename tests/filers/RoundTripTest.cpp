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
#include <string>

namespace
{

MString TagOf(std::size_t number)
{
    return (L"v" + std::to_wstring(number)).c_str();
}

/// What becomes of the values when they are written to one filer and read from the other, which
/// `makeIn` makes in between.
template <class T, class Write, class Read, class MakeIn>
std::vector<T> Back(const std::vector<T>& values, IOutFilerTagged& out, Write write, Read read,
                    MakeIn makeIn)
{
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_TRUE((out.*write)(TagOf(i), values[i]));
    const auto in = makeIn();
    std::vector<T> results(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_TRUE(((*in).*read)(TagOf(i), &results[i], T{})) << values[i];
    return results;
}

std::unique_ptr<IInFilerTagged> Reader(const MOutFilerTaggedXml& out)
{
    MString text;
    out.GetDocumentText(&text);
    return std::unique_ptr<IInFilerTagged>(new MInFilerTaggedXml(text, L"r", nullptr));
}

template <class T, class Write, class Read>
std::vector<T> BackFromXml(const std::vector<T>& values, Write write, Read read)
{
    MOutFilerTaggedXml out(L"r", nullptr);
    return Back(values, out, write, read, [&] { return Reader(out); });
}

template <class T, class Write, class Read>
std::vector<T> BackFromRegistry(const std::vector<T>& values, Write write, Read read)
{
    IOutFilerTaggedRegistry out(L"RoundTripTest");
    const std::vector<T> results = Back(values, out, write, read, [] {
        return std::unique_ptr<IInFilerTagged>(new IInFilerTaggedRegistry(L"RoundTripTest", false));
    });
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\RoundTripTest");
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
    return results;
}

std::wstring TextFromXml(const std::wstring& text)
{
    MOutFilerTaggedXml out(L"r", nullptr);
    EXPECT_TRUE(out.WriteString(L"v", text.c_str()));
    MString result;
    EXPECT_TRUE(Reader(out)->ReadString(L"v", result, L"default"));
    return result.c_str();
}

template <class T, class Write, class Read>
void ExpectIntegersBack(Write write, Read read)
{
    typedef std::numeric_limits<T> Limits;
    std::mt19937 random(1);
    std::vector<T> values = {Limits::min(), Limits::max(), 0, 1, static_cast<T>(-1)};
    for (int bits = 0; bits < 32; ++bits)
        values.push_back(static_cast<T>(random() >> bits));
    EXPECT_EQ(values, BackFromXml(values, write, read));
    EXPECT_EQ(values, BackFromRegistry(values, write, read));
}

/// Both signs of zero, denormals, and some random digits for every `step`th sign and exponent.
template <class T, class Bits>
std::vector<T> FiniteNumbers(int digits, Bits step)
{
    std::mt19937_64 random(2);
    std::vector<T> values = {0, static_cast<T>(-0.0), std::numeric_limits<T>::denorm_min()};
    const Bits signsAndExponents = Bits{1} << (sizeof(T) * 8 - digits + 1);
    for (Bits upper = 0; upper < signsAndExponents; upper += step) {
        const Bits bits = static_cast<Bits>((upper << (digits - 1)) | (random() >> (65 - digits)));
        T value;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value))
            values.push_back(value);
    }
    return values;
}

/// Expects each result to be what the nearest number of `digits` decimal digits makes of its value.
template <class T>
void ExpectClose(const std::vector<T>& values, const std::vector<T>& results, int digits)
{
    typedef std::numeric_limits<T> Limits;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double magnitude = std::fabs(static_cast<double>(values[i]));
        const double step =
            magnitude * (std::pow(10.0, 1 - digits) + static_cast<double>(Limits::epsilon())) +
            static_cast<double>(Limits::denorm_min());
        EXPECT_NEAR(static_cast<double>(values[i]), static_cast<double>(results[i]), step / 2);
        EXPECT_EQ(std::signbit(values[i]), std::signbit(results[i]));
    }
}

} // namespace

TEST(RoundTrip, IntegersAreKept)
{
    typedef IOutFilerTagged Out;
    typedef IInFilerTagged In;
    ExpectIntegersBack<unsigned char>(&Out::WriteByte, &In::ReadByte);
    ExpectIntegersBack<unsigned short>(&Out::WriteUInt16, &In::ReadUInt16);
    ExpectIntegersBack<short>(&Out::WriteInt16, &In::ReadInt16);
    ExpectIntegersBack<unsigned int>(&Out::WriteUInt32, &In::ReadUInt32);
    ExpectIntegersBack<int>(&Out::WriteInt32, &In::ReadInt32);
}

TEST(RoundTrip, FloatsKeepTheirBitsInXmlAndSevenDigitsInTheRegistry)
{
    const auto write = &IOutFilerTagged::WriteFloat;
    const auto read = &IInFilerTagged::ReadFloat;
    const std::vector<float> values = FiniteNumbers<float, std::uint32_t>(24, 1);
    const std::vector<float> results = BackFromXml(values, write, read);
    EXPECT_EQ(0, std::memcmp(values.data(), results.data(), values.size() * sizeof(float)));
    const std::vector<float> some = FiniteNumbers<float, std::uint32_t>(24, 5);
    ExpectClose(some, BackFromRegistry(some, write, read), 7);
}

TEST(RoundTrip, DoublesKeepSixteenDigitsInXmlAndFifteenInTheRegistry)
{
    const auto write = &IOutFilerTagged::WriteDouble;
    const auto read = &IInFilerTagged::ReadDouble;
    const std::vector<double> values = FiniteNumbers<double, std::uint64_t>(53, 1);
    ExpectClose(values, BackFromXml(values, write, read), 16);
    const std::vector<double> some = FiniteNumbers<double, std::uint64_t>(53, 41);
    ExpectClose(some, BackFromRegistry(some, write, read), 15);
}

TEST(RoundTrip, NonFiniteNumbersAreKeptInXml)
{
    typedef std::numeric_limits<double> Limits;
    const double infinity = Limits::infinity();
    const std::vector<double> results =
        BackFromXml(std::vector<double>{infinity, -infinity, Limits::quiet_NaN(), Limits::max()},
                    &IOutFilerTagged::WriteDouble, &IInFilerTagged::ReadDouble);
    EXPECT_EQ(infinity, results[0]);
    EXPECT_EQ(-infinity, results[1]);
    EXPECT_TRUE(std::isnan(results[2]));
    EXPECT_EQ(infinity, results[3]); // rounded up to sixteen digits
}

TEST(RoundTrip, CharactersAreKeptInXmlButForWhiteSpaceAndZero)
{
    for (int code = 0; code < 256; ++code) {
        MOutFilerTaggedXml out(L"r", nullptr);
        const char value = static_cast<char>(code);
        EXPECT_TRUE(out.WriteChar(L"v", value));
        char result = 0;
        const bool lost = code == 0 || std::iswspace(static_cast<std::wint_t>(code));
        EXPECT_EQ(!lost, Reader(out)->ReadChar(L"v", &result, 'd')) << code;
        EXPECT_EQ(lost ? 'd' : value, result) << code;
    }
}

TEST(RoundTrip, TextIsKept)
{
    std::wstring all;
    for (int unit = 1; unit < 0x10000; ++unit) {
        const std::wstring alone(1, static_cast<wchar_t>(unit));
        ASSERT_EQ(alone, TextFromXml(alone));
        all += alone;
    }
    for (const std::wstring& text : {all, std::wstring(L"]]>"), std::wstring(L"<![CDATA[x]]>"),
                                     std::wstring(L"&lt;&#65;"), std::wstring(L"\r\n a\t\r\n")})
        EXPECT_EQ(text, TextFromXml(text));

    IOutFilerTaggedRegistry out(L"RoundTripTest");
    MString result;
    EXPECT_TRUE(out.WriteString(L"v", all.c_str()));
    EXPECT_TRUE(IInFilerTaggedRegistry(L"RoundTripTest", false).ReadString(L"v", result, L""));
    EXPECT_EQ(all, result.c_str());
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\RoundTripTest");
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
}
