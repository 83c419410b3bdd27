#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/filers/ErrorChains.h"
#include "tests/filers/ScriptedFilers.h"
#include "tests/support/Allocations.h"

#include <gtest/gtest.h>

namespace
{

MError MakeError()
{
    MError error(L"Pump.Drain:Blocked");
    error.AddParameter(L"status", 258u, false);
    error.AddParameter(L"Z", MString(L"<&>"));
    error.AddParameter(L"a", MString());
    return error;
}

MString Filed(const MException& exception)
{
    MOutFilerTaggedXml out(L"ExceptionChain", nullptr);
    MFilerTaggedPair filer(nullptr, &out);
    EXPECT_TRUE(exception.Write(filer, L"Exception"));
    MString text;
    EXPECT_TRUE(out.GetDocumentText(&text));
    return text;
}

MString Chain(const wchar_t* content)
{
    return (std::wstring(L"<ExceptionChain><Exception>") + content +
            L"</Exception></ExceptionChain>")
        .c_str();
}

std::wstring Unfolded(const MString& text)
{
    return ChainSummary(MException(CarryingError(text)));
}

} // namespace

TEST(ErrorFiling, ChainHasItsForm)
{
    MException exception(MakeError());
    exception.AddError(MErrorOutOfMemory());
    EXPECT_STREQ(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 L"<ExceptionChain>\n"
                 L"<Exception>\n"
                 L"<Error>\n"
                 L"<Code type=\"string\">Pump.Drain:Blocked</Code>\n"
                 L"<Parameter>\n"
                 L"<Name type=\"string\">Z</Name>\n"
                 L"<Value type=\"string\">&lt;&amp;&gt;</Value>\n"
                 L"</Parameter>\n"
                 L"<Parameter>\n"
                 L"<Name type=\"string\">a</Name>\n"
                 L"<Value type=\"string\"/>\n"
                 L"</Parameter>\n"
                 L"<Parameter>\n"
                 L"<Name type=\"string\">status</Name>\n"
                 L"<Value type=\"string\">258</Value>\n"
                 L"</Parameter>\n"
                 L"</Error>\n"
                 L"<Error>\n"
                 L"<Code type=\"string\"/>\n"
                 L"</Error>\n"
                 L"</Exception>\n"
                 L"</ExceptionChain>\n",
                 Filed(exception).c_str());
}

TEST(ErrorFiling, CarriedChainUnfoldsInFrontOfItsCarrier)
{
    MException exception(MakeError());
    exception.AddError(MErrorOutOfMemory());
    const MException unfolded{CarryingError(Filed(exception))};
    EXPECT_EQ(L"Pump.Drain:Blocked Z=<&> a= status=258;;Carrier;", ChainSummary(unfolded));
    ASSERT_EQ(3u, unfolded.GetErrorCount());
    EXPECT_STREQ(L"Unspecified error", unfolded.GetError(1)->GetMessageText().c_str());
    EXPECT_EQ(L"Carrier;", Unfolded(Filed(MException())));
}

TEST(ErrorFiling, TextThatIsNoChainIsDropped)
{
    EXPECT_EQ(L"Carrier;", Unfolded(L"something went wrong"));
    EXPECT_EQ(L"Carrier;", Unfolded(L"<ExceptionChain><Exception/>"));
    EXPECT_EQ(L"Carrier;", Unfolded(L"<Chain><Exception><Error><Code type='string'>c</Code>"
                                    L"</Error></Exception></Chain>"));
    EXPECT_EQ(L"Carrier;", Unfolded(L"<ExceptionChain><Error><Code type='string'>c</Code>"
                                    L"</Error></ExceptionChain>"));
    EXPECT_EQ(L"Carrier;", Unfolded(Chain(L"<Error/>")));
    EXPECT_EQ(L"Carrier;", Unfolded(Chain(L"<Error><Code type='int'>1</Code></Error>")));
}

TEST(ErrorFiling, BrokenParameterListEndsQuietly)
{
    EXPECT_EQ(L"c n=v;Carrier;",
              Unfolded(Chain(L"<Error><Code type='string'>c</Code>"
                             L"<Parameter><Name type='string'>n</Name>"
                             L"<Value type='string'>v</Value></Parameter>"
                             L"<Parameter><Value type='string'>w</Value></Parameter>"
                             L"</Error>")));
    EXPECT_EQ(L"c n=v;Carrier;",
              Unfolded(Chain(L"<Error><Code type='string'>c</Code>"
                             L"<Parameter><Name type='string'>n</Name>"
                             L"<Value type='string'>v</Value></Parameter>"
                             L"<Parameter><Name type='string'>n</Name>"
                             L"<Value type='string'>second</Value></Parameter></Error>")));
}

TEST(ErrorFiling, FailedWriteLeavesTheGroupsAsTold)
{
    const MError error = MakeError();
    Script script;
    ScriptedOutFiler out(script);
    MFilerTaggedPair filer(nullptr, &out);
    const struct {
        int failing;
        const wchar_t* calls;
    } cases[] = {
        {1, L"out(E "},
        {2, L"out(E out:Code=Pump.Drain:Blocked out) "},
        {3, L"out(E out:Code=Pump.Drain:Blocked out(Parameter out) "},
        {4, L"out(E out:Code=Pump.Drain:Blocked out(Parameter out:Name=Z out) "},
        {5, L"out(E out:Code=Pump.Drain:Blocked out(Parameter out:Name=Z out:Value=<&> out) "},
        {6, L"out(E out:Code=Pump.Drain:Blocked out(Parameter out:Name=Z out:Value=<&> out) out) "},
    };
    for (const auto& one : cases) {
        script.FailAt(one.failing);
        EXPECT_FALSE(error.Write(filer, L"E"));
        EXPECT_EQ(one.calls, script.TakeCalls());
    }
}

TEST(ErrorFiling, FailedErrorEndsTheChain)
{
    MException exception(MError(L"first"));
    exception.AddError(MError(L"second"));
    Script script;
    ScriptedOutFiler out(script);
    MFilerTaggedPair filer(nullptr, &out);
    script.FailAt(3);
    EXPECT_FALSE(exception.Write(filer, L"X"));
    EXPECT_EQ(L"out(X out(Error out:Code=first out) out) ", script.TakeCalls());
}

TEST(ErrorFiling, AbsentFilerFails)
{
    MFilerTaggedPair filer(nullptr, nullptr);
    MError error = MakeError();
    EXPECT_FALSE(error.Write(filer, L"E"));
    EXPECT_FALSE(error.Read(filer, L"E", error));
    EXPECT_TRUE(error.GetCode().IsEmpty());
    EXPECT_TRUE(error.GetParameters().empty());
    EXPECT_TRUE(MException().Write(filer, L"X"));
    MException read(MakeError());
    EXPECT_TRUE(read.ReadErrors(filer, read));
    EXPECT_EQ(0u, read.GetErrorCount());
}

TEST(ErrorFiling, LackOfMemoryLeaksNothing)
{
    MException exception(MakeError());
    exception.AddError(MakeError());
    const CarryingError carrier(Filed(exception));
    const auto fileAndUnfold = [&] {
        MException unfolded(carrier);
        Filed(unfolded);
    };
    ForEachFailingAllocation(AllocationFailure::Throws, fileAndUnfold, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}
