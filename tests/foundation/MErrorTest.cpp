#include "foundation/MErrorOutOfMemory.h"

#include "foundation/MDynClass.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <locale>
#include <map>
#include <memory>
#include <random>
#include <sstream>

#include <windows.h>

namespace
{

struct Thousands : std::numpunct<wchar_t> {
    std::string do_grouping() const override { return "\3"; }
};

/// The locale of the process, which nothing filed depends on, while this lives.
struct GroupingProcess {
    GroupingProcess() : before(std::locale::global(std::locale(std::locale(), new Thousands))) {}
    ~GroupingProcess() { std::locale::global(before); }
    const std::locale before;
};

std::string Digits(std::uint32_t value)
{
    char text[10];
    sprintf(text, "%08xh", value);
    return text;
}

} // namespace

TEST(MDynObject, RecordsFormTheTreeAndCopiesKeepTheClass)
{
    const MErrorOutOfMemory error;
    const MDynClass* const record = error.GetDynClass();
    EXPECT_STREQ(L"MErrorOutOfMemory", record->GetName().c_str());
    EXPECT_EQ(&MError::dynClass, record->GetBase());
    EXPECT_EQ(&MDynObject::dynClass, MError::dynClass.GetBase());
    EXPECT_EQ(nullptr, MDynObject::dynClass.GetBase());
    EXPECT_EQ(record, std::unique_ptr<MDynObject>(error.Clone())->GetDynClass());
    EXPECT_EQ(record, std::unique_ptr<MDynObject>(error.CreateInstance())->GetDynClass());
    EXPECT_EQ(&MError::dynClass, MError(error).GetDynClass());
    EXPECT_TRUE(std::unique_ptr<MDynObject>(MError().CreateInstance()));
    EXPECT_EQ(nullptr, error.MDynObject::Clone());
    EXPECT_EQ(nullptr, error.MDynObject::CreateInstance());
}

TEST(MError, CodeIsComposedOfWhatIsThere)
{
    const wchar_t* const choices[][3] = {
        {nullptr, L"", L"Class"}, {nullptr, L"", L"Function"}, {nullptr, L"", L"Code"}};
    for (int n = 0; n < 27; ++n) {
        const int given[] = {n % 3, n / 3 % 3, n / 9};
        std::wstring expected;
        for (int part = 0; part < 3; ++part)
            if (given[part] == 2) {
                if (!expected.empty())
                    expected += L".:"[part - 1];
                expected += choices[part][2];
            }
        EXPECT_EQ(expected,
                  ComposeErrorCode(choices[0][given[0]], choices[1][given[1]], choices[2][given[2]])
                      .c_str());
    }
}

TEST(MError, ParametersBecomePlainTextOfWhichTheFirstStays)
{
    const GroupingProcess grouping;
    std::mt19937 random;
    for (int round = 0; round < 200; ++round) {
        MError error(L"A.B:C");
        std::map<std::string, std::string> model;
        for (int i = 0; i < 6; ++i) {
            const std::uint32_t bits = random() >> random() % 32;
            const HRESULT value = static_cast<HRESULT>(bits);
            const std::string name(1 + random() % 2, static_cast<char>('a' + random() % 3));
            const std::wstring wide(name.begin(), name.end());
            const std::string texts[] = {"", std::to_string(value), std::to_string(bits),
                                         Digits(bits)};
            const std::size_t form = random() % 4;
            if (form == 0)
                error.AddParameter(wide.c_str(), MString());
            else if (form == 1)
                error.AddParameter(wide.c_str(), value);
            else
                error.AddParameter(wide.c_str(), bits, form == 3);
            model.emplace(name, texts[form]);
        }
        std::string expected = "A.B:C";
        for (const auto& parameter : model)
            expected += " " + parameter.first + "=" + parameter.second;
        EXPECT_EQ(expected, FailureText(MException(error)));
        EXPECT_EQ(expected, FailureText(MException(MError(error))));
    }
    EXPECT_STREQ(L"Unspecified error", MError().GetMessageText().c_str());
    EXPECT_STREQ(L"A.B:C", MError(L"A.B:C").GetMessageText().c_str());
    EXPECT_STREQ(L"Out of memory", MErrorOutOfMemory().GetMessageText().c_str());
}
