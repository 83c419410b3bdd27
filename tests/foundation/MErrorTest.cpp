#include "foundation/MErrorOutOfMemory.h"

#include "foundation/MDynClass.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <locale>
#include <memory>

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
    EXPECT_EQ(&MError::dynClass, record->GetBase());
    EXPECT_EQ(&MDynObject::dynClass, MError::dynClass.GetBase());
    EXPECT_EQ(nullptr, MDynObject::dynClass.GetBase());
    EXPECT_EQ(record, std::unique_ptr<MDynObject>(error.Clone())->GetDynClass());
    EXPECT_EQ(record, std::unique_ptr<MDynObject>(error.CreateInstance())->GetDynClass());
    EXPECT_EQ(&MError::dynClass, MError(error).GetDynClass());
    EXPECT_TRUE(std::unique_ptr<MDynObject>(MError().CreateInstance()));
}

TEST(MError, CodeIsComposedOfWhatIsThere)
{
    EXPECT_STREQ(L"Class.Function:Code", ComposeErrorCode(L"Class", L"Function", L"Code").c_str());
    EXPECT_STREQ(L"Class:Code", ComposeErrorCode(L"Class", L"", L"Code").c_str());
    EXPECT_STREQ(L"Function", ComposeErrorCode(nullptr, L"Function", nullptr).c_str());
    EXPECT_STREQ(L"Code", ComposeErrorCode(nullptr, nullptr, L"Code").c_str());
}

TEST(MError, ParametersBecomePlainTextOfWhichTheFirstStays)
{
    const std::locale before = std::locale::global(std::locale(std::locale(), new Thousands));
    MError error(L"A.B:C");
    error.AddParameter(L"empty", MString());
    error.AddParameter(L"empty", 3);
    error.AddParameter(L"filled", 6699u, true);
    error.AddParameter(L"signed", -1);
    error.AddParameter(L"unsigned", 0xFFFFFFFF, false);
    std::locale::global(before);
    EXPECT_EQ("A.B:C empty= filled=00001a2bh signed=-1 unsigned=4294967295",
              FailureText(MException(error)));
    EXPECT_EQ("Unspecified error", FailureText(MException(MError())));
    EXPECT_STREQ(L"A.B:C", error.GetMessageText().c_str());
}
