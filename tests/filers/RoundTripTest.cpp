#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cwctype>
#include <limits>
#include <random>
#include <string>

namespace
{

/// One back end to write to, and then another of the same kind to read it back.
class XmlStore
{
public:
    IOutFilerTagged& Out() { return out; }
    std::unique_ptr<IInFilerTagged> In()
    {
        MString text;
        out.GetDocumentText(&text);
        return std::unique_ptr<IInFilerTagged>(new MInFilerTaggedXml(text, L"r", nullptr));
    }

private:
    MOutFilerTaggedXml out{L"r", nullptr};
};

class RegistryStore
{
public:
    ~RegistryStore()
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\RoundTripTest");
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
    }
    IOutFilerTagged& Out() { return out; }
    std::unique_ptr<IInFilerTagged> In()
    {
        return std::unique_ptr<IInFilerTagged>(new IInFilerTaggedRegistry(L"RoundTripTest", false));
    }

private:
    IOutFilerTaggedRegistry out{L"RoundTripTest"};
};

MString Tag(int number)
{
    return (L"v" + std::to_wstring(number)).c_str();
}

/// Writes every value, and expects `check(value, read)` of what comes back.
template <class Store, class Values, class Write, class Read, class Check>
void RoundTrip(const Values& values, Write write, Read read, Check check)
{
    Store store;
    int number = 0;
    for (const auto& value : values)
        ASSERT_TRUE((store.Out().*write)(Tag(number++), value));
    const std::unique_ptr<IInFilerTagged> in = store.In();
    number = 0;
    for (const auto& value : values) {
        typename Values::value_type result{};
        EXPECT_TRUE(((*in).*read)(Tag(number++), &result, typename Values::value_type{})) << value;
        EXPECT_TRUE(check(value, result)) << value << " became " << result;
    }
}

template <class T>
std::vector<T> Integers(std::mt19937& random)
{
    typedef std::numeric_limits<T> Limits;
    std::vector<T> values = {Limits::min(), Limits::max(), 0, 1, static_cast<T>(-1)};
    for (int bits = 1; bits < 32; ++bits)
        values.push_back(static_cast<T>(random() >> bits));
    return values;
}

template <class Store>
void RoundTripIntegers()
{
    std::mt19937 random(1);
    const auto same = [](auto a, auto b) { return a == b; };
    typedef IOutFilerTagged Out;
    typedef IInFilerTagged In;
    RoundTrip<Store>(Integers<unsigned char>(random), &Out::WriteByte, &In::ReadByte, same);
    RoundTrip<Store>(Integers<unsigned short>(random), &Out::WriteUInt16, &In::ReadUInt16, same);
    RoundTrip<Store>(Integers<short>(random), &Out::WriteInt16, &In::ReadInt16, same);
    RoundTrip<Store>(Integers<unsigned int>(random), &Out::WriteUInt32, &In::ReadUInt32, same);
    RoundTrip<Store>(Integers<int>(random), &Out::WriteInt32, &In::ReadInt32, same);
}

template <class T, class Bits>
T FromBits(Bits bits)
{
    T value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Both signs of zero, denormals, and some random digits for every sign and exponent.
template <class T, class Bits>
std::vector<T> FiniteNumbers(int digits)
{
    typedef std::numeric_limits<T> Limits;
    std::mt19937_64 random(2);
    std::vector<T> values = {0, static_cast<T>(-0.0), Limits::min(), Limits::denorm_min()};
    const Bits signsAndExponents = Bits{1} << (sizeof(T) * 8 - digits + 1);
    for (Bits upper = 0; upper < signsAndExponents; ++upper) {
        const Bits lower = static_cast<Bits>(random() >> (65 - digits));
        const T value = FromBits<T>(static_cast<Bits>((upper << (digits - 1)) | lower));
        if (std::isfinite(value))
            values.push_back(value);
    }
    return values;
}

std::vector<double> Doubles()
{
    return FiniteNumbers<double, std::uint64_t>(53);
}

std::vector<float> Floats()
{
    return FiniteNumbers<float, std::uint32_t>(24);
}

/// Whether `b` is what the nearest number of `digits` decimal digits makes of `a`.
template <class T>
bool AreClose(T a, T b, int digits)
{
    const double magnitude = std::fabs(static_cast<double>(a));
    const double decimalStep = magnitude * std::pow(10.0, 1 - digits);
    const double binaryStep = magnitude * static_cast<double>(std::numeric_limits<T>::epsilon()) +
                              static_cast<double>(std::numeric_limits<T>::denorm_min());
    return std::signbit(a) == std::signbit(b) &&
           std::fabs(static_cast<double>(a) - static_cast<double>(b)) <=
               (decimalStep + binaryStep) / 2;
}

std::wstring BackThroughXml(const std::wstring& text)
{
    XmlStore store;
    EXPECT_TRUE(store.Out().WriteString(L"v", text.c_str()));
    MString result;
    EXPECT_TRUE(store.In()->ReadString(L"v", result, L"default"));
    return result.c_str();
}

} // namespace

TEST(RoundTrip, Integers)
{
    RoundTripIntegers<XmlStore>();
    RoundTripIntegers<RegistryStore>();
}

TEST(RoundTrip, FloatsThroughXmlAreExact)
{
    RoundTrip<XmlStore>(Floats(), &IOutFilerTagged::WriteFloat, &IInFilerTagged::ReadFloat,
                        [](float a, float b) { return std::memcmp(&a, &b, sizeof a) == 0; });
}

TEST(RoundTrip, DoublesThroughXmlKeepSixteenDigits)
{
    RoundTrip<XmlStore>(Doubles(), &IOutFilerTagged::WriteDouble, &IInFilerTagged::ReadDouble,
                        [](double a, double b) { return AreClose(a, b, 16); });
}

TEST(RoundTrip, FloatingNumbersThroughTheRegistryKeepTheirDigits)
{
    std::vector<double> doubles = Doubles();
    std::shuffle(doubles.begin(), doubles.end(), std::mt19937(3));
    doubles.resize(100);
    RoundTrip<RegistryStore>(doubles, &IOutFilerTagged::WriteDouble, &IInFilerTagged::ReadDouble,
                             [](double a, double b) { return AreClose(a, b, 15); });
    std::vector<float> floats = Floats();
    RoundTrip<RegistryStore>(floats, &IOutFilerTagged::WriteFloat, &IInFilerTagged::ReadFloat,
                             [](float a, float b) { return AreClose(a, b, 7); });
}

TEST(RoundTrip, NonFiniteNumbersThroughXml)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<double> values = {infinity, -infinity,
                                        std::numeric_limits<double>::quiet_NaN()};
    RoundTrip<XmlStore>(
        values, &IOutFilerTagged::WriteDouble, &IInFilerTagged::ReadDouble,
        [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); });
}

// With 16 digits it is rounded up.
TEST(RoundTrip, LargestDoubleThroughXmlBecomesInfinity)
{
    RoundTrip<XmlStore>(std::vector<double>{std::numeric_limits<double>::max()},
                        &IOutFilerTagged::WriteDouble, &IInFilerTagged::ReadDouble,
                        [](double, double b) { return std::isinf(b); });
}

TEST(RoundTrip, CharactersThroughXmlAllButWhiteSpaceAndZero)
{
    for (int code = 0; code < 256; ++code) {
        XmlStore store;
        const char value = static_cast<char>(code);
        EXPECT_TRUE(store.Out().WriteChar(L"v", value));
        char result = 0;
        const bool lost = code == 0 || std::iswspace(static_cast<std::wint_t>(code));
        EXPECT_EQ(!lost, store.In()->ReadChar(L"v", &result, 'd')) << code;
        EXPECT_EQ(lost ? 'd' : value, result) << code;
    }
}

TEST(RoundTrip, TextThroughXml)
{
    for (int unit = 1; unit < 0x10000; ++unit) {
        const std::wstring alone(1, static_cast<wchar_t>(unit));
        ASSERT_EQ(alone, BackThroughXml(alone));
        const std::wstring amid = L" a" + alone + L"b ";
        ASSERT_EQ(amid, BackThroughXml(amid));
    }
    for (const wchar_t* text : {L"]]>", L"<![CDATA[x]]>", L"<!--", L"&lt;&#65;&amp;",
                                L"\r\n a \r\n", L"<a>", L"</v>", L"\"'", L"\xD800\xDC00 \xDC00"})
        EXPECT_EQ(text, BackThroughXml(text));
}

TEST(RoundTrip, TextThroughTheRegistry)
{
    std::wstring text;
    for (int unit = 1; unit < 0x10000; ++unit)
        text += static_cast<wchar_t>(unit);
    RegistryStore store;
    EXPECT_TRUE(store.Out().WriteString(L"v", text.c_str()));
    MString result;
    EXPECT_TRUE(store.In()->ReadString(L"v", result, L"default"));
    EXPECT_EQ(text, result.c_str());
}
