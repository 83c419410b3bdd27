#include "foundation/MException.h"

#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/support/DumpedRecord.h"
#include "tests/support/Raised.h"

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
    EXPECT_EQ(nullptr, MException().GetError(0));
    const MException chain = Chain({L"a", L"b"});
    EXPECT_EQ(L"a b ", Codes(chain));
    EXPECT_EQ(nullptr, chain.GetError(-1));
    EXPECT_EQ(nullptr, chain.GetError(2));
}

TEST(MException, CopyIsDeepAndDropsNullEntriesAndTakingReplaces)
{
    MException original = Chain({L"a"});
    original.AddError(Uncloneable());
    original.AddError(MErrorOutOfMemory());
    EXPECT_EQ(L"a (null)  ", Codes(original));

    const MException copy(original);
    EXPECT_EQ(L"a  ", Codes(copy));
    EXPECT_NE(original.GetError(0), copy.GetError(0));
    EXPECT_EQ(&MErrorOutOfMemory::dynClass, copy.GetError(1)->GetDynClass());

    MException temporary = Chain({L"new"});
    original.TakeFrom(temporary);
    EXPECT_EQ(L"new ", Codes(original));
}

TEST(MException, ThrowCarriesTheErrorAndDismissalIsRecorded)
{
    static MFlowLocation location(L"ExceptionTester", L"Throw");
    MError error(L"A.B:C");
    error.AddParameter(L"n", 1);
    EXPECT_EQ("A.B:C n=1", Raised([&] { location.Throw(error); }));
    EXPECT_EQ("Out of memory", Raised(RaiseOutOfMemory));

    location.SetLine(12).DismissError(MException(error));
    const DumpedRecord record =
        ReadDump(TakeDump(*MFlowLogger::GetInstance()->GetImplementation())).back();
    EXPECT_EQ(-103, record.numbers[0]);
    EXPECT_EQ(0, record.numbers[1]);
    EXPECT_EQ(12, record.numbers[2]);
}
