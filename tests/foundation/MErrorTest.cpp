#include "foundation/MErrorOutOfMemory.h"

#include "foundation/MDynClass.h"
#include "tests/support/Allocations.h"
#include "tests/support/Raised.h"

#include <locale>
#include <memory>
#include <random>

#include <windows.h>

namespace
{

struct Thousands : std::numpunct<wchar_t> {
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

TEST(MDynObject, RecordsFormTheTreeAndCopiesKeepTheClass)
{
    const MErrorOutOfMemory error;
    const MDynClass* const record = error.GetDynClass();
    EXPECT_STREQ(L"MErrorOutOfMemory", record->GetName().c_str());
    EXPECT_EQ(&MDynObject::dynClass, record->GetBase()->GetBase());
    EXPECT_EQ(nullptr, MDynObject::dynClass.GetBase());
    EXPECT_EQ(record, std::unique_ptr<MDynObject>(error.Clone())->GetDynClass());
    EXPECT_EQ(record, std::unique_ptr<MDynObject>(error.CreateInstance())->GetDynClass());
    EXPECT_EQ(&MError::dynClass, MError(error).GetDynClass());
    EXPECT_TRUE(std::unique_ptr<MDynObject>(MError().CreateInstance()));
    EXPECT_FALSE(error.MDynObject::Clone() || error.MDynObject::CreateInstance());
}

TEST(MError, CodeIsComposedOfWhatIsThere)
{
    EXPECT_STREQ(L"Class.Function:Code", ComposeErrorCode(L"Class", L"Function", L"Code").c_str());
    EXPECT_STREQ(L"Class:Code", ComposeErrorCode(L"Class", L"", L"Code").c_str());
    EXPECT_STREQ(L"Function", ComposeErrorCode(nullptr, L"Function", nullptr).c_str());
    EXPECT_STREQ(L"Code", ComposeErrorCode(nullptr, nullptr, L"Code").c_str());
}

TEST(MError, ParametersBecomePlainTextInOrderOfNameOfWhichTheFirstStays)
{
    const std::locale before = std::locale::global(std::locale(std::locale(), new Thousands));
    std::mt19937 random;
    for (int round = 0; round < 1000; ++round) {
        MError error(L"A.B:C");
        std::map<std::string, std::string> told;
        for (int i = 0; i < 4; ++i) {
            const std::uint32_t bits = random() >> random() % 32;
            const auto value = static_cast<HRESULT>(bits);
            char digits[10];
            sprintf(digits, "%08xh", bits);
            const wchar_t name[] = {static_cast<wchar_t>(L'a' + random() % 3), L'\0'};
            const int form = static_cast<int>(random() % 4);
            if (form == 0)
                error.AddParameter(name, MString());
            else if (form == 1)
                error.AddParameter(name, value);
            else
                error.AddParameter(name, bits, form == 3);
            const std::string texts[] = {"", std::to_string(value), std::to_string(bits), digits};
            told.emplace(std::string(1, static_cast<char>(*name)), texts[form]);
        }
        std::string expected = "A.B:C";
        for (const auto& parameter : told)
            expected += " " + parameter.first + "=" + parameter.second;
        ASSERT_EQ(expected, FailureText(MException(MError(error))));
    }
    std::locale::global(before);
    const auto addNumber = [] { MError().AddParameter(L"n", 1234567890u, false); };
    ForEachFailingAllocation(AllocationFailure::Throws, addNumber, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
    EXPECT_EQ("Unspecified error", FailureText(MException(MError())));
    EXPECT_STREQ(L"A.B:C", MError(L"A.B:C").GetMessageText().c_str());
    EXPECT_STREQ(L"", MError(L"A.B:C").GetDetailText().c_str());
}
