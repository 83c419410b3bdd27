#include "foundation/MLocale.h"

#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace
{

template <class T>
std::wstring Streamed(const MLocale& locale, T value)
{
    std::wostringstream text;
    text.imbue(locale.GetStreamLocale());
    text << value;
    return text.str();
}

} // namespace

TEST(MLocale, ClassicNumbersAreNeverGrouped)
{
    const MLocale& classic = MLocale::GetClassicLocale();
    EXPECT_EQ("C", classic.GetName());
    EXPECT_EQ(L"1234567", Streamed(classic, 1234567));
    EXPECT_EQ(L"1.5", Streamed(classic, 1.5));
    EXPECT_EQ("*", classic.GetStreamLocale().name());
    EXPECT_STREQ(L"-17 1.5 text", classic.FormatText(L"%d %.1f %ls", -17, 1.5, L"text").c_str());
    EXPECT_EQ(0, classic.FormatText(L"%ls", L"").GetLength());
}

TEST(MLocale, NamedLocaleBringsItsDecimalComma)
{
    const MLocale original("German_Germany.1252");
    const MLocale german(original);
    EXPECT_EQ("German_Germany.1252", german.GetName());
    EXPECT_EQ(L"12345,5", Streamed(german, 12345.5));
    EXPECT_EQ(L"1234567", Streamed(german, 1234567));
    EXPECT_STREQ(L"1,5", german.FormatText(L"%.1f", 1.5).c_str());
    const wchar_t* const text = L"1,5.";
    const wchar_t* end = nullptr;
    EXPECT_EQ(1.5, german.ParseDouble(text, &end));
    EXPECT_EQ(text + 3, end);
}

TEST(MLocale, ReportedNameIsKept)
{
    EXPECT_EQ("German_Germany.1252", MLocale("German").GetName());
    EXPECT_EQ(MLocale("").GetName(), MLocale(nullptr).GetName());
    const char mixed[] = "LC_COLLATE=C;LC_CTYPE=C;LC_MONETARY=C;"
                         "LC_NUMERIC=German_Germany.1252;LC_TIME=C";
    EXPECT_EQ(mixed, MLocale(mixed).GetName());
    EXPECT_EQ(L"0,5", Streamed(MLocale(mixed), 0.5));
}

TEST(MLocale, ProcessLocaleIsNeitherUsedNorTouched)
{
    const std::string before = setlocale(LC_ALL, nullptr);
    ASSERT_NE(nullptr, setlocale(LC_ALL, "German"));
    const MLocale french("French");
    EXPECT_STREQ("German_Germany.1252", setlocale(LC_ALL, nullptr));
    EXPECT_EQ(L"1.5", Streamed(MLocale::GetClassicLocale(), 1.5));
    EXPECT_EQ(1.5, MLocale::GetClassicLocale().ParseDouble(L"1.5", nullptr));
    setlocale(LC_ALL, before.c_str());
}

TEST(MLocale, UnknownNameIsRaised)
{
    EXPECT_EQ("MLocale.MLocale:BadCppLocale name=no such place\x80 what=bad locale name",
              Raised([] { MLocale("no such place\x80"); }));
}

TEST(MLocale, NamesAreRewrittenOnceEachInOrder)
{
    const struct {
        const char* name;
        const char* normalised;
    } cases[] = {
        {nullptr, ""},
        {"", ""},
        {"Arabic_U.A.E..1256", "Arabic_ARE.1256"},
        {"Chinese (Traditional)_Hong Kong S.A.R..950", "Chinese (Traditional)_HKG.950"},
        {"Hong Kong S.A.R. Hong Kong S.A.R.", "HKG Hong Kong S.A.R."},
        {"Chinese (Traditional)_Macau S.A.R..950", "ZHM"},
        {"Chinese_Macao S.A.R..950", "ZHM"},
        {"Chinese (Traditional)_Macao S.A.R..950|Chinese_Macau S.A.R..950", "ZHM|ZHM"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one.normalised, NormaliseLocaleName(one.name));
}

TEST(MLocale, DoublesAreReadInAllTheirForms)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        const wchar_t* text;
        double value;
        int read;
    } cases[] = {
        {L"", 0, 0},
        {L"12abc", 12, 2},
        {L" -2.5e-3", -2.5e-3, 8},
        {L"0x10", 0, 1},
        {L"1e999", infinity, 5},
        {L"1.#INF", infinity, 6},
        {L"-1.#INF00e+005", -infinity, 14},
        {L"1.#INF7", infinity, 6},
        {L"1.#QNAN00", nan, 9},
        {L"1.#SNAN", nan, 7},
        {L"1.#NAN0", nan, 7},
        {L"-1.#IND", nan, 7},
        {L"1.#inf", 1, 2},
        {L"2.#INF", 2, 2},
        {L"inf", infinity, 3},
        {L" -infinity", -infinity, 10},
        {L"+INFINITY", infinity, 9},
        {L"infINITY", infinity, 3},
        {L"Infinity", 0, 0},
        {L"nan", nan, 3},
        {L"Nan", 0, 0},
        {L"+-inf", 0, 0},
    };
    for (const auto& one : cases) {
        const wchar_t* end = nullptr;
        const double value = MLocale::GetClassicLocale().ParseDouble(one.text, &end);
        EXPECT_EQ(one.read, end - one.text) << one.text;
        EXPECT_TRUE(std::isnan(one.value) ? std::isnan(value) : value == one.value) << one.text;
    }
}

TEST(MLocale, ToDoubleSaysWhetherThereWasANumber)
{
    const MLocale& classic = MLocale::GetClassicLocale();
    double value = 7;
    EXPECT_FALSE(classic.ToDouble(L"12", nullptr) || classic.ToDouble(MString(), &value));
    EXPECT_EQ(0, value);
    EXPECT_TRUE(classic.ToDouble(L"-1e999", &value)); // out of range is a number too
    EXPECT_EQ(-std::numeric_limits<double>::infinity(), value);
    EXPECT_EQ(-12, classic.ParseInt(L" -12x"));
}
