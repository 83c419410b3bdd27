#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"

#include <windows.h>

#include <cmath>
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

    std::unique_ptr<In> Reader() const
    {
        return std::unique_ptr<In>(new IInFilerTaggedRegistry(L"RoundTripTest", false));
    }
};

class RoundTrip : public testing::Test
{
protected:
    ~RoundTrip() override
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\RoundTripTest");
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
    }
};

/// What becomes of a value when it is written and read again.
template <class Filer, class T, class Write, class Read>
T Back(T value, Write write, Read read)
{
    Filer out;
    T result = T();
    EXPECT_TRUE((out.*write)(L"v", value));
    EXPECT_TRUE(((*out.Reader()).*read)(L"v", &result, T())) << value;
    return result;
}

/// Expects a value back up to a part of it.
template <class Filer, class T, class Write, class Read>
void ExpectNear(T value, Write write, Read read, double part)
{
    const T back = Back<Filer>(value, write, read);
    EXPECT_NEAR(value, back,
                part * std::fabs(value) + (part > 0) * std::numeric_limits<T>::denorm_min());
    EXPECT_EQ(std::signbit(value), std::signbit(back));
}

template <class T, class Write, class Read>
void ExpectIntegersBack(Write write, Read read)
{
    typedef std::numeric_limits<T> Limits;
    std::mt19937 random(1);
    for (int i = 0; i < 20; ++i) {
        const T number = static_cast<T>(random() >> (i % 32));
        for (const T value : {number, static_cast<T>(~number), Limits::min(), Limits::max()}) {
            ExpectNear<Xml>(value, write, read, 0);
            ExpectNear<Registry>(value, write, read, 0);
        }
    }
}

/// Expects numbers of random digits for every `step`th exponent from the denormals on, with both
/// signs, to come back up to a part of them.
template <class T, class Write, class Read>
void ExpectFloatsBack(int step, Write write, Read read, double xmlPart, double registryPart)
{
    typedef std::numeric_limits<T> Limits;
    std::mt19937 random(2);
    std::uniform_real_distribution<T> digits(0.5, 1);
    for (int e = Limits::min_exponent - Limits::digits; e <= Limits::max_exponent; e += step) {
        const T number = std::ldexp(digits(random), e);
        for (const T value : {number, -number, T(0), T(-0.0)}) {
            ExpectNear<Xml>(value, write, read, xmlPart);
            ExpectNear<Registry>(value, write, read, registryPart);
        }
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

template <class Filer>
void ExpectLackOfMemoryLeavesNothing()
{
    const auto fileAndRead = [] {
        Filer out;
        MString text;
        double value = 0;
        unsigned int number = 0;
        out.BeginGroup(L"g") && out.WriteDouble(L"v", 1.0 / 3) &&
            out.WriteUInt32(L"n", 1234567890) && out.EndGroup() &&
            out.WriteDocument(L"d", L"<root>some text in here</root>");
        const std::unique_ptr<In> in = out.Reader();
        in->BeginGroup(L"g") && in->ReadDouble(L"v", &value, 0) &&
            in->ReadUInt32(L"n", &number, 0) && in->EndGroup() && in->ReadDocument(L"d", text);
        EXPECT_EQ(1234567890u, number);
    };
    fileAndRead();
    ForEachFailingAllocation(AllocationFailure::Throws, fileAndRead, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}

} // namespace

TEST_F(RoundTrip, IntegersCharactersAndTextsAreKept)
{
    ExpectIntegersBack<unsigned char>(&Out::WriteByte, &In::ReadByte);
    ExpectIntegersBack<unsigned short>(&Out::WriteUInt16, &In::ReadUInt16);
    ExpectIntegersBack<short>(&Out::WriteInt16, &In::ReadInt16);
    ExpectIntegersBack<unsigned int>(&Out::WriteUInt32, &In::ReadUInt32);
    ExpectIntegersBack<int>(&Out::WriteInt32, &In::ReadInt32);
    ExpectTextsBack<Xml>();
    ExpectTextsBack<Registry>();
    for (int code = 0; code < 256; ++code) {
        const char value = static_cast<char>(code);
        EXPECT_EQ(value, (Back<Registry>(value, &Out::WriteChar, &In::ReadChar)));
        if (code != 0 && !std::iswspace(static_cast<std::wint_t>(code))) {
            EXPECT_EQ(value, (Back<Xml>(value, &Out::WriteChar, &In::ReadChar)));
        }
    }
}

TEST_F(RoundTrip, FloatingNumbersKeepTheDigitsOfTheirBackEnd)
{
    ExpectFloatsBack<float>(5, &Out::WriteFloat, &In::ReadFloat, 0, 5.6e-7);
    ExpectFloatsBack<double>(41, &Out::WriteDouble, &In::ReadDouble, 6.2e-16, 5.2e-15);
    const double infinity = std::numeric_limits<double>::infinity();
    const double most = std::numeric_limits<double>::max(); // rounded up to sixteen digits
    for (const double value : {infinity, -infinity, most})
        EXPECT_EQ(value == most ? infinity : value,
                  Back<Xml>(value, &Out::WriteDouble, &In::ReadDouble));
    EXPECT_TRUE(std::isnan(Back<Xml>(std::nan(""), &Out::WriteDouble, &In::ReadDouble)));
}

TEST_F(RoundTrip, LackOfMemoryLeavesByExceptionAndNothingOpen)
{
    ExpectLackOfMemoryLeavesNothing<Xml>();
    const ExpectSameHandles handles;
    ExpectLackOfMemoryLeavesNothing<Registry>();
}
