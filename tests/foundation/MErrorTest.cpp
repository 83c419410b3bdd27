#include "foundation/MErrorOutOfMemory.h"

#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "foundation/MDynClass.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

const wchar_t className[] = L"ErrorTester";

class Unmakeable : public MDynObject
{
    const MDynClass* GetDynClass() const override { return nullptr; }
};

} // namespace

TEST(MDynObject, RecordsFormTheTreeAndCopiesKeepTheClass)
{
    const MErrorOutOfMemory error;
    const MDynClass* const record = error.GetDynClass();
    EXPECT_STREQ(L"MErrorOutOfMemory", record->GetName().c_str());
    EXPECT_EQ(MError().GetDynClass(), record->GetBase());
    EXPECT_EQ(&MDynObject::dynClass, record->GetBase()->GetBase());
    EXPECT_EQ(nullptr, MDynObject::dynClass.GetBase());

    const std::unique_ptr<MDynObject> clone(error.Clone());
    const std::unique_ptr<MDynObject> instance(error.CreateInstance());
    EXPECT_EQ(record, clone->GetDynClass());
    EXPECT_EQ(record, instance->GetDynClass());
    EXPECT_EQ(&MError::dynClass, MError(error).GetDynClass());
    const Unmakeable other;
    EXPECT_TRUE(!other.Clone() && !other.CreateInstance());
}

TEST(MError, CodeIsComposedOfWhatIsThere)
{
    EXPECT_STREQ(L"Class.Function:Code", ComposeErrorCode(L"Class", L"Function", L"Code").c_str());
    EXPECT_STREQ(L"Class.Function", ComposeErrorCode(L"Class", L"Function", nullptr).c_str());
    EXPECT_STREQ(L"Class:Code", ComposeErrorCode(L"Class", L"", L"Code").c_str());
    EXPECT_STREQ(L"Function:Code", ComposeErrorCode(nullptr, L"Function", L"Code").c_str());
    EXPECT_STREQ(L"Code", ComposeErrorCode(nullptr, nullptr, L"Code").c_str());
    EXPECT_TRUE(ComposeErrorCode(nullptr, nullptr, nullptr).IsEmpty());
}

TEST(MError, ParametersBecomePlainTextOfWhichTheFirstStays)
{
    MError error(L"A.B:C");
    error.AddParameter(L"empty", MString());
    error.AddParameter(L"empty", 3);
    error.AddParameter(L"filled", 6699u, true);
    error.AddParameter(L"hexadecimal", 0xFFFFFFFF, true);
    error.AddParameter(L"signed", -1);
    error.AddParameter(L"unsigned", 0xFFFFFFFF, false);
    EXPECT_EQ("A.B:C empty= filled=00001a2bh hexadecimal=ffffffffh signed=-1 unsigned=4294967295",
              FailureText(MException(error)));
    EXPECT_EQ("Unspecified error", FailureText(MException(MError())));
    EXPECT_STREQ(L"A.B:C", error.GetMessageText().c_str());
    EXPECT_TRUE(error.GetDetailText().IsEmpty() && error.GetChainText().IsEmpty());
}

TEST(MError, RaisingEmptiesTheErrorAndStandsInTheLog)
{
    MFlowLocation location(className, L"Raise");
    int object = 0;
    MError error(L"old");
    error.AddParameter(L"old", 1);
    location.SetObject(&object).SetLine(99).RaiseRootError(error, L"BrandNew");
    EXPECT_STREQ(L"ErrorTester.Raise:BrandNew", error.GetCode().c_str());
    EXPECT_TRUE(error.GetParameters().empty());

    const DumpedRecord record =
        ReadDump(TakeDump(*MFlowLogger::GetInstance()->GetImplementation())).back();
    EXPECT_EQ(0u, record.text.find("% Root_error BrandNew in_class "));
    EXPECT_NE(std::string::npos, record.text.find(" at Raise for_object "));
    EXPECT_EQ(99, record.numbers[2]);
}
