#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "tests/support/Allocations.h"
#include "tests/support/ExpectNoMoreHandles.h"

#include <windows.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <cwctype>
#include <functional>
#include <limits>
#include <tuple>

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

    std::wstring State() const
    {
        MString text;
        GetDocumentText(&text);
        return text.c_str();
    }

    std::unique_ptr<In> Reader() const
    {
        return std::make_unique<MInFilerTaggedXml>(State().c_str(), L"r", nullptr);
    }
};

struct Registry : IOutFilerTaggedRegistry {
    static constexpr double floatPart = 5.6e-7;
    static constexpr double doublePart = 5.2e-15;

    Registry() : IOutFilerTaggedRegistry(L"RoundTripTest") {}

    std::wstring State() const
    {
        wchar_t units[100] = {};
        DWORD size = sizeof units;
        RegGetValueW(HKEY_CURRENT_USER, L"Software\\Varek\\RoundTripTest\\g", L"v",
                     RRF_RT_ANY | RRF_NOEXPAND, nullptr, units, &size);
        return units;
    }

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
        for (const char* const processLocale : {"German", "C"}) {
            ASSERT_TRUE(setlocale(LC_ALL, processLocale));
            for (const T number : {Limits::min(), T(Limits::max() / -7), Limits::denorm_min(),
                                   T(-0.0), T(-0.7), T(1), T(0x9A6B9C8D)})
                ExpectBack(number, write, read, part);
        }
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

TYPED_TEST(RoundTrip, LackOfMemoryLeavesWhatIsFiledAndNothingOpen)
{
    const std::function<bool(Out&)> writes[] = {
        [](Out& out) { return out.WriteString(L"v", L"a text of some length & more"); },
        [](Out& out) { return out.BeginGroup(L"v") && out.EndGroup(); },
        [](Out& out) { return out.WriteDouble(L"v", 0.125); },
        [](Out& out) { return out.WriteDocument(L"v", L"<r><a/>text<b>more text</b></r>"); },
        [](Out& out) { return out.WriteUInt32(L"v", 1234567890); }};
    TypeParam out;
    out.BeginGroup(L"g");
    int changes = 0;
    for (const auto& write : writes) {
        const std::wstring before = out.State();
        const auto readAndWrite = [&] {
            MString text;
            out.Reader()->ReadString(L"v", text, L"a default of some length");
            write(out);
        };
        const auto check = [&](ShortageOutcome outcome) {
            EXPECT_NE(ShortageOutcome::Completed, outcome);
            EXPECT_EQ(before, out.State());
        };
        RunShortOfMemory(AllocationFailure::Throws, 1,
                         readAndWrite); // the first exception opens handles
        const ExpectNoMoreHandles handles;
        ForEachFailingAllocation(AllocationFailure::Throws, readAndWrite, check);
        changes += before != out.State();
    }
    EXPECT_EQ((std::is_same<TypeParam, Xml>() ? 5 : 3), changes);
}

// Callers that were built elsewhere know the operations by their places, which this compiler has in
// the pointers to them.
TEST(FilerInterfaces, OperationsAreInTheirPlaces)
{
    const auto outs = std::make_tuple(
        &Out::WriteChar, &Out::WriteString, &Out::WriteDouble, &Out::WriteFloat, &Out::WriteBool,
        &Out::WriteByte, &Out::WriteUInt16, &Out::WriteInt16, &Out::WriteUInt32, &Out::WriteInt32,
        &Out::BeginGroup, &Out::EndGroup, &Out::WriteDocument);
    const auto ins = std::make_tuple(&In::ReadString, &In::ReadChar, &In::ReadDouble,
                                     &In::ReadFloat, &In::ReadBool, &In::ReadByte, &In::ReadUInt16,
                                     &In::ReadInt16, &In::ReadUInt32, &In::ReadInt32,
                                     &In::BeginGroup, &In::EndGroup, &In::ReadDocument);
    std::uintptr_t pointers[2][26] = {}; // each is a place and an adjustment of 0
    static_assert(sizeof pointers[0] == sizeof outs && sizeof outs == sizeof ins, "");
    std::memcpy(pointers[0], &outs, sizeof outs);
    std::memcpy(pointers[1], &ins, sizeof ins);
    for (std::size_t i = 0; i < 13; ++i) // last in a tuple is first in memory
        for (const auto& ofOne : pointers)
            EXPECT_EQ((14 - i) * sizeof(void*) + 1, ofOne[2 * i]); // the destructor takes two
}
