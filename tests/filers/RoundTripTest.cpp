#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "tests/support/Allocations.h"
#include "tests/support/ProcessHandles.h"

#include <windows.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <cwctype>
#include <functional>
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

// Value by value, over one that is there; a group has none.
TYPED_TEST(RoundTrip, FailedWriteLeavesWhatIsFiledAndNothingOpen)
{
    const std::function<bool(Out&)> writes[] = {
        [](Out& out) { return out.WriteString(L"v", L"a text of some length & more"); },
        [](Out& out) { return out.WriteChar(L"v", 'c') && out.EndGroup(); },
        [](Out& out) { return out.BeginGroup(L"v") && out.EndGroup(); },
        [](Out& out) { return out.WriteDouble(L"v", 0.125); },
        [](Out& out) { return out.WriteDocument(L"v", L"<r><a/>text<b>more text</b></r>"); },
        [](Out& out) { return out.WriteUInt32(L"v", 1234567890); },
    };
    for (const auto& write : writes) {
        TypeParam out;
        out.BeginGroup(L"g");
        const std::wstring before = out.State();
        const auto tryIt = [&] { write(out); };
        RunShortOfMemory(AllocationFailure::Throws, 1, tryIt); // the first exception opens handles
        const ExpectSameHandles handles;
        ForEachFailingAllocation(AllocationFailure::Throws, tryIt, [&](ShortageOutcome outcome) {
            EXPECT_NE(ShortageOutcome::Completed, outcome);
            EXPECT_EQ(before, out.State());
        });
        TypeParam whole;
        EXPECT_TRUE(whole.BeginGroup(L"g"));
        write(whole);
        EXPECT_EQ(whole.State(), out.State());
    }
}

TYPED_TEST(RoundTrip, LackOfMemoryLeavesReadingByExceptionAndNothingOpen)
{
    TypeParam out;
    out.WriteDouble(L"v", 0.125) && out.WriteUInt32(L"n", 7) && out.WriteDocument(L"d", L"<r/>");
    const auto read = [&] {
        MString text;
        double value = 0;
        unsigned int number = 0;
        const std::unique_ptr<In> in = out.Reader();
        in->ReadDouble(L"v", &value, 0) && in->ReadUInt32(L"n", &number, 0) &&
            in->ReadDocument(L"d", text);
        EXPECT_EQ(7u, number);
    };
    const ExpectSameHandles handles;
    ForEachFailingAllocation(AllocationFailure::Throws, read, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}

// Callers that were built elsewhere know the operations by their places.
TEST(FilerInterfaces, OperationsAreInTheirPlaces)
{
    std::vector<std::uintptr_t> slots;
    const auto add = [&](auto operation) {
        std::uintptr_t place = 0; // this compiler's form of a virtual operation
        std::memcpy(&place, &operation, sizeof place);
        slots.push_back(place / sizeof(void*));
    };
    add(&Out::WriteChar), add(&Out::WriteString), add(&Out::WriteDouble), add(&Out::WriteFloat);
    add(&Out::WriteBool), add(&Out::WriteByte), add(&Out::WriteUInt16), add(&Out::WriteInt16);
    add(&Out::WriteUInt32), add(&Out::WriteInt32), add(&Out::BeginGroup), add(&Out::EndGroup);
    add(&Out::WriteDocument);
    add(&In::ReadString), add(&In::ReadChar), add(&In::ReadDouble), add(&In::ReadFloat);
    add(&In::ReadBool), add(&In::ReadByte), add(&In::ReadUInt16), add(&In::ReadInt16);
    add(&In::ReadUInt32), add(&In::ReadInt32), add(&In::BeginGroup), add(&In::EndGroup);
    add(&In::ReadDocument);
    for (std::size_t i = 0; i < 26; ++i)
        EXPECT_EQ(2 + i % 13, slots[i]); // the destructor takes two
}
