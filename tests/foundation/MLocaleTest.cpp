#include "foundation/MLocale.h"

#include "tests/support/Allocations.h"
#include "tests/support/Raised.h"

#include <cerrno>
#include <cmath>
#include <sstream>

#include <windows.h>

namespace
{

/// Heap blocks that are out, those of the C run time, where handles of locales lie, among them.
std::size_t CountRunTimeBlocks()
{
    const HANDLE heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    std::size_t count = 0;
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry))
        count += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0;
    return count;
}

} // namespace

TEST(MLocale, NumbersHaveTheDecimalPointOfTheLocaleWhateverThatOfTheProcess)
{
    const char mixed[] = "LC_COLLATE=C;LC_CTYPE=C;LC_MONETARY=C;"
                         "LC_NUMERIC=German_Germany.1252;LC_TIME=C";
    const struct {
        const char* name;
        const char* reported;
        const wchar_t* number;
    } cases[] = {{"C", "C", L"12345.5"},
                 {"German", "German_Germany.1252", L"12345,5"},
                 {mixed, mixed, L"12345,5"}};
    const std::string before = setlocale(LC_ALL, nullptr);
    ASSERT_NE(nullptr, setlocale(LC_ALL, "French"));
    for (const auto& one : cases) {
        const MLocale original(one.name);
        const MLocale locale(original);
        EXPECT_EQ(one.reported, locale.GetName());
        std::wostringstream stream;
        stream.imbue(locale.GetStreamLocale());
        stream << 12345.5;
        EXPECT_EQ(one.number, stream.str());
        EXPECT_STREQ(one.number, locale.FormatText(L"%.1f", 12345.5).c_str());
        const wchar_t* end = nullptr;
        EXPECT_EQ(12345.5, locale.ParseDouble(one.number, &end));
        EXPECT_EQ(one.number + 7, end);
    }
    EXPECT_EQ(MLocale("").GetName(), MLocale(nullptr).GetName());
    EXPECT_STREQ("French_France.1252", setlocale(LC_ALL, nullptr));
    setlocale(LC_ALL, before.c_str());
}

TEST(MLocale, NamesAreRewrittenOnceEachInOrderAndUnknownOnesRaised)
{
    const char* const cases[][2] = {
        {nullptr, ""},
        {"Arabic_U.A.E..1256", "Arabic_ARE.1256"},
        {"Hong Kong S.A.R. Hong Kong S.A.R.", "HKG Hong Kong S.A.R."},
        {"Chinese (Traditional)_Macau S.A.R..950|Chinese_Macao S.A.R..950", "ZHM|ZHM"},
        {"Chinese (Traditional)_Macao S.A.R..950|Chinese_Macau S.A.R..950", "ZHM|ZHM"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one[1], NormaliseLocaleName(one[0]));
    EXPECT_EQ("MLocale.MLocale:BadCppLocale name=no such place\x80 what=bad locale name",
              Raised([] { MLocale("no such place\x80"); }));
    // Known by this name, and unknown by that which it reports.
    EXPECT_EQ("MLocale.MLocale:BadCppLocale name=nn what=" + std::string(std::exception().what()),
              Raised([] { MLocale("nn"); }));
    try {
        MLocale("\x7F\x80");
    } catch (MException& exception) {
        EXPECT_STREQ(L"\x7F\xFF80", exception.GetFailure()->GetParameters().at(L"name").c_str());
    }
}

TEST(MLocale, LackOfMemoryLeavesNothingBehindAndHandlesAreFreed)
{
    MLocale("German");
    const auto make = [] { MLocale("German"); };
    for (const auto how : {AllocationFailure::Throws, AllocationFailure::ThrowsForGood})
        ForEachFailingAllocation(how, make, [](ShortageOutcome outcome) {
            EXPECT_NE(ShortageOutcome::Completed, outcome); // what is left is seen in the end
        });

    const std::size_t before = CountRunTimeBlocks();
    const MLocale original("German");
    for (int i = 0; i < 50; ++i)
        MLocale copy(original);
    EXPECT_GT(before + 50, CountRunTimeBlocks());
}

TEST(MLocale, NumbersAreReadInAllTheirForms)
{
    // Text, the number in it, and how far it reaches.
    std::wistringstream cases(
        L"-2.5e-3abc -0.0025 7  0x10 0 1  -1e999 -inf 6  -1.#INF00e+005 -inf 14  1.#INF7 inf 6 "
        L"1.#QNAN00 nan 9  1.#SNAN nan 7  1.#NAN0 nan 7  -1.#IND nan 7  1.#inf 1 2  2.#INF 2 2 "
        L"-infinity -inf 9  +INFINITY inf 9  infINITY inf 3  Infinity 0 0  nan nan 3  NAN nan 3 "
        L"+-inf 0 0");
    const MLocale& classic = MLocale::GetClassicLocale();
    std::wstring text, number;
    for (std::ptrdiff_t reach = 0; cases >> text >> number >> reach;) {
        const double expected = std::stod(number);
        for (const std::wstring blanks : {L"", L" \t"}) {
            const std::wstring blanked = blanks + text;
            double value = 7;
            errno = EINVAL; // of somebody else's
            EXPECT_EQ(reach > 0, classic.ToDouble(blanked.c_str(), &value)) << blanked;
            EXPECT_TRUE(std::isnan(expected) ? std::isnan(value) : value == expected) << blanked;
            const wchar_t* end = nullptr;
            classic.ParseDouble(blanked.c_str(), &end);
            EXPECT_EQ(reach ? reach + int(blanks.size()) : 0, end - blanked.c_str()) << blanked;
        }
    }
    double value = 7;
    EXPECT_FALSE(classic.ToDouble(L"12", nullptr) || classic.ToDouble(L"", &value));
    EXPECT_EQ(0, value);
    EXPECT_EQ(12.5, classic.ParseDouble(L"12.5x", nullptr));
    EXPECT_EQ(-12, classic.ParseInt(L" -12x"));
    EXPECT_STREQ(L"1", classic.FormatText(L"%d%ls", 1, L"").c_str());
    EXPECT_EQ(0, classic.FormatText(L"%ls", L"").GetLength());
}
