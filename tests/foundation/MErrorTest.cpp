#include "foundation/MErrorOutOfMemory.h"

#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "foundation/MDynClass.h"
#include "tests/support/DumpedRecord.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

const wchar_t className[] = L"ErrorTester";

class Unmakeable : public MDynObject
{
    const MDynClass* GetDynClass() const override { return nullptr; }
};

MString Parameter(const MError& error, const wchar_t* name)
{
    const MError::Parameters::const_iterator found = error.GetParameters().find(name);
    return found == error.GetParameters().end() ? MString(L"(none)") : found->second;
}

} // namespace

TEST(MDynObject, RecordsFormTheTree)
{
    const MErrorOutOfMemory error;
    const MDynClass* const record = error.GetDynClass();
    EXPECT_STREQ(L"MErrorOutOfMemory", record->GetName().c_str());
    EXPECT_EQ(MError().GetDynClass(), record->GetBase());
    EXPECT_EQ(&MDynObject::dynClass, record->GetBase()->GetBase());
    EXPECT_EQ(nullptr, MDynObject::dynClass.GetBase());
    EXPECT_STREQ(L"MDynObject", MDynObject::dynClass.GetName().c_str());
}

TEST(MDynObject, CloneAndInstanceKeepTheClass)
{
    const MErrorOutOfMemory error;
    const std::unique_ptr<MDynObject> clone(error.Clone());
    const std::unique_ptr<MDynObject> instance(error.CreateInstance());
    EXPECT_EQ(error.GetDynClass(), clone->GetDynClass());
    EXPECT_EQ(error.GetDynClass(), instance->GetDynClass());
    EXPECT_STREQ(L"Out of memory", dynamic_cast<MError&>(*clone).GetMessageText().c_str());
    EXPECT_EQ(&MError::dynClass, MError(error).GetDynClass());

    const Unmakeable other;
    EXPECT_EQ(nullptr, other.Clone());
    EXPECT_EQ(nullptr, other.CreateInstance());
}

TEST(MError, CodeIsComposedOfWhatIsThere)
{
    const struct {
        const wchar_t* parts[3];
        const wchar_t* code;
    } cases[] = {
        {{L"Class", L"Function", L"Code"}, L"Class.Function:Code"},
        {{L"Class", L"Function", nullptr}, L"Class.Function"},
        {{L"Class", L"", L"Code"}, L"Class:Code"},
        {{nullptr, L"Function", L"Code"}, L"Function:Code"},
        {{nullptr, nullptr, L"Code"}, L"Code"},
        {{nullptr, nullptr, nullptr}, L""},
    };
    for (const auto& example : cases)
        EXPECT_STREQ(
            example.code,
            ComposeErrorCode(example.parts[0], example.parts[1], example.parts[2]).c_str());
}

TEST(MError, MessageIsTheCode)
{
    EXPECT_STREQ(L"Unspecified error", MError().GetMessageText().c_str());
    EXPECT_STREQ(L"A.B:C", MError(L"A.B:C").GetMessageText().c_str());
    EXPECT_STREQ(L"", MError(L"A.B:C").GetDetailText().c_str());
    EXPECT_STREQ(L"", MError(L"A.B:C").GetChainText().c_str());
}

TEST(MError, NumbersBecomePlainText)
{
    MError error;
    error.AddParameter(L"signed", -1);
    error.AddParameter(L"unsigned", 0xFFFFFFFF, false);
    error.AddParameter(L"large", 1234567u, false);
    error.AddParameter(L"hexadecimal", 0xFFFFFFFF, true);
    error.AddParameter(L"filled", 6699u, true);
    EXPECT_STREQ(L"-1", Parameter(error, L"signed").c_str());
    EXPECT_STREQ(L"4294967295", Parameter(error, L"unsigned").c_str());
    EXPECT_STREQ(L"1234567", Parameter(error, L"large").c_str());
    EXPECT_STREQ(L"ffffffffh", Parameter(error, L"hexadecimal").c_str());
    EXPECT_STREQ(L"00001a2bh", Parameter(error, L"filled").c_str());
}

TEST(MError, FirstValueOfANameStays)
{
    MError error;
    error.AddParameter(L"name", MString());
    error.AddParameter(L"name", L"second");
    error.AddParameter(L"name", 3);
    EXPECT_EQ(1u, error.GetParameters().size());
    EXPECT_STREQ(L"", Parameter(error, L"name").c_str());
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
