#include "foundation/MException.h"

#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/support/DumpedRecord.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

class Uncloneable : public MError
{
    MDynObject* Clone() const override { return nullptr; }
};

MException Chain(std::initializer_list<const wchar_t*> codes)
{
    MException exception;
    for (const wchar_t* code : codes)
        exception.AddError(MError(code));
    return exception;
}

std::wstring Codes(const MException& exception)
{
    std::wstring codes;
    for (std::uint32_t i = 0; i < exception.GetErrorCount(); ++i) {
        const MError* const error = exception.GetError(static_cast<std::int32_t>(i));
        codes += error ? error->GetCode().c_str() : L"(null)";
        codes += L' ';
    }
    return codes;
}

} // namespace

TEST(MException, EntriesAreCountedFromTheFirst)
{
    const MException empty;
    EXPECT_EQ(0u, empty.GetErrorCount());
    EXPECT_EQ(nullptr, empty.GetError(0));

    const MException chain = Chain({L"a", L"b"});
    EXPECT_STREQ(L"b", chain.GetError(1)->GetCode().c_str());
    EXPECT_EQ(nullptr, chain.GetError(-1));
    EXPECT_EQ(nullptr, chain.GetError(2));
    EXPECT_EQ(std::string::npos, std::string(chain.what()).find('a' + std::string("b")));
}

TEST(MException, CopyIsDeepAndDropsNullEntries)
{
    MException original = Chain({L"a"});
    original.AddError(Uncloneable());
    original.AddError(MErrorOutOfMemory());
    EXPECT_EQ(L"a (null)  ", Codes(original));

    const MException copy(original);
    EXPECT_EQ(2u, copy.GetErrorCount());
    EXPECT_NE(original.GetError(0), copy.GetError(0));
    EXPECT_EQ(&MErrorOutOfMemory::dynClass, copy.GetError(1)->GetDynClass());
}

TEST(MException, TakingReplacesWhatWasThere)
{
    MException target = Chain({L"old", L"older"});
    MException temporary = Chain({L"new"});
    target.TakeFrom(temporary);
    EXPECT_EQ(L"new ", Codes(target));
}

TEST(MException, ThrowCarriesTheErrorAndDismissalIsRecorded)
{
    static MFlowLocation location(L"ExceptionTester", L"Throw");
    try {
        MError error(L"A.B:C");
        error.AddParameter(L"n", 1);
        location.Throw(error);
        FAIL() << "Throw returned";
    } catch (MException& exception) {
        ASSERT_EQ(1u, exception.GetErrorCount());
        EXPECT_EQ(1u, exception.GetError(0)->GetParameters().size());
        location.SetLine(12).DismissError(exception);
    }
    const DumpedRecord record =
        ReadDump(TakeDump(*MFlowLogger::GetInstance()->GetImplementation())).back();
    EXPECT_EQ(-103, record.numbers[0]);
    EXPECT_EQ(0, record.numbers[1]);
    EXPECT_EQ(12, record.numbers[2]);
}

TEST(MException, OutOfMemoryHasItsTextOnly)
{
    try {
        RaiseOutOfMemory();
    } catch (MException& exception) {
        ASSERT_EQ(1u, exception.GetErrorCount());
        EXPECT_STREQ(L"", exception.GetError(0)->GetCode().c_str());
        EXPECT_STREQ(L"Out of memory", exception.GetError(0)->GetMessageText().c_str());
    }
}
