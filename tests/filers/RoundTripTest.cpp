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

namespace
{

typedef IOutFilerTagged Out;
typedef IInFilerTagged In;

template <class T>
using Write = bool (Out::*)(const MString&, T);
template <class T>
using Read = bool (In::*)(const MString&, T*, T);

// The back ends, with the part of a number that they may lose.

struct Xml : MOutFilerTaggedXml {
    static constexpr double floatPart = 0;
    static constexpr double doublePart = 6.2e-16;

    Xml() : MOutFilerTaggedXml(L"r", nullptr) {}

    std::unique_ptr<In> Reader() const
    {
        MString text;
        GetDocumentText(&text);
        return std::make_unique<MInFilerTaggedXml>(text, L"r", nullptr);
    }
};

struct Registry : IOutFilerTaggedRegistry {
    static constexpr double floatPart = 5.6e-7;
    static constexpr double doublePart = 5.2e-15;

    Registry() : IOutFilerTaggedRegistry(L"RoundTripTest") {}

    std::unique_ptr<In> Reader() const
    {
        return std::make_unique<IInFilerTaggedRegistry>(L"RoundTripTest", false);
    }
};

template <class Filer>
struct RoundTrip : testing::Test {
    ~RoundTrip() override
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\RoundTripTest");
        RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
    }

    /// Expects a value to come back when it is written and read again, up to a part of it.
    template <class T>
    static void ExpectBack(T value, Write<T> write, Read<T> read, double part = 0)
    {
        Filer out;
        T back = T();
        EXPECT_TRUE((out.*write)(L"v", value));
        EXPECT_TRUE(((*out.Reader()).*read)(L"v", &back, T())) << value;
        EXPECT_NEAR(value, back, part * std::fabs(value));
        EXPECT_EQ(std::signbit(value), std::signbit(back));
    }

    template <class T>
    static void ExpectNumbersBack(Write<T> write, Read<T> read, double part = 0)
    {
        typedef std::numeric_limits<T> Limits;
        for (const T number : {Limits::min(), T(Limits::max() / -7), Limits::denorm_min(), T(-0.0),
                               T(-0.7), T(1), T(0x9A6B9C8D)})
            ExpectBack(number, write, read, part);
    }
};

typedef testing::Types<Xml, Registry> BackEnds;
TYPED_TEST_SUITE(RoundTrip, BackEnds, );

} // namespace

TYPED_TEST(RoundTrip, NumbersAreKept)
{
    this->ExpectNumbersBack(&Out::WriteBool, &In::ReadBool);
    this->ExpectNumbersBack(&Out::WriteByte, &In::ReadByte);
    this->ExpectNumbersBack(&Out::WriteUInt16, &In::ReadUInt16);
    this->ExpectNumbersBack(&Out::WriteInt16, &In::ReadInt16);
    this->ExpectNumbersBack(&Out::WriteUInt32, &In::ReadUInt32);
    this->ExpectNumbersBack(&Out::WriteInt32, &In::ReadInt32);
    this->ExpectNumbersBack(&Out::WriteFloat, &In::ReadFloat, TypeParam::floatPart);
    this->ExpectNumbersBack(&Out::WriteDouble, &In::ReadDouble, TypeParam::doublePart);
}

TYPED_TEST(RoundTrip, CharactersAndTextsAreKept)
{
    for (int code = 1; code < 256; ++code)
        if (!std::iswspace(static_cast<std::wint_t>(code))) // as XML such are no characters
            this->ExpectBack(static_cast<char>(code), &Out::WriteChar, &In::ReadChar);

    std::wstring all;
    for (int unit = 1; unit < 0x10000; ++unit)
        all += static_cast<wchar_t>(unit);
    for (const wchar_t* text :
         {all.c_str(), L"", L" ", L"]]>", L"<![CDATA[x]]>", L"&lt;&#65;", L"\r\n a\t\r\n"}) {
        TypeParam out;
        MString result;
        EXPECT_TRUE(out.WriteString(L"v", text));
        EXPECT_TRUE(out.Reader()->ReadString(L"v", result, L"default"));
        EXPECT_STREQ(text, result.c_str());
    }
}

TYPED_TEST(RoundTrip, LackOfMemoryLeavesByExceptionAndNothingOpen)
{
    const auto fileAndRead = [] {
        TypeParam out;
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
    RunShortOfMemory(AllocationFailure::Throws, 1, fileAndRead); // the first exception opens some
    const ExpectSameHandles handles;
    ForEachFailingAllocation(AllocationFailure::Throws, fileAndRead, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}
