#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/filers/ChainModule.h"
#include "tests/support/Allocations.h"
#include "tests/support/Raised.h"

#include <windows.h>

namespace
{

MException MakeException()
{
    MError error(L"Pump.Drain:Blocked");
    error.AddParameter(L"status", 258u, false);
    error.AddParameter(L"Z", MString(L"<&>"));
    MException exception(error);
    exception.AddError(MErrorOutOfMemory());
    return exception;
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

/// The errors that an exception has whose only error carries `text`.
std::string Unfolded(const MString& text)
{
    const MException exception{CarryingError(text)};
    std::string errors;
    for (std::uint32_t i = 0; i < exception.GetErrorCount(); ++i)
        errors += FailureText(MException(*exception.GetError(static_cast<std::int32_t>(i)))) + ";";
    return errors;
}

/// The fatal error text of a module in which an error fails that carries `text`.
std::wstring FailModule(const wchar_t* file, const std::wstring& text)
{
    struct KeptText : TextReceiver {
        explicit KeptText(std::wstring& text) : text(text) {}
        void operator()(const std::wstring& given) override { text = given; }
        std::wstring& text;
    };
    std::wstring fatal;
    const HMODULE module = LoadLibraryW(file);
    void* const fail = reinterpret_cast<void*>(GetProcAddress(module, "FailCarrying"));
    reinterpret_cast<decltype(FailCarrying)*>(fail)(text, new KeptText(fatal));
    FreeLibrary(module);
    return fatal;
}

/// Tells its calls, "=" for a value, and answers false to the `failing`th.
struct ScriptedFiler : MOutFilerTaggedXml {
    explicit ScriptedFiler(std::size_t nth) : MOutFilerTaggedXml(L"r", nullptr), failing(nth) {}
    bool WriteString(const MString&, const MString&) override { return Tell('='); }
    bool BeginGroup(const MString&) override { return Tell('('); }
    bool EndGroup() override { return Tell(')'); }

    bool Tell(char call)
    {
        calls += call;
        return calls.size() != failing;
    }

    const std::size_t failing;
    std::string calls;
};

} // namespace

TEST(ErrorFiling, CarriedChainUnfoldsInFrontOfItsCarrierAsFarAsItCanBeRead)
{
    const std::wstring start = L"<ExceptionChain><Exception><Error><Code type='string'>c</Code>"
                               L"<Parameter><Name type='string'>n</Name>"
                               L"<Value type='string'>v</Value></Parameter><Parameter>";
    const std::wstring end = L"</Parameter></Error></Exception></ExceptionChain>";
    const std::wstring error = L"<Error><Code type='string'>c</Code></Error>";
    const struct {
        MString text;
        const char* unfolded;
    } cases[] = {
        {Filed(MakeException()), "Pump.Drain:Blocked Z=<&> status=258;Unspecified error;Carrier;"},
        {Filed(MException()), "Carrier;"},
        {(L"<Chain><Exception>" + error + L"</Exception></Chain>").c_str(), "Carrier;"},
        {(L"<ExceptionChain>" + error + L"</ExceptionChain>").c_str(), "Carrier;"},
        {(start + L"<Value type='string'>w</Value>" + end).c_str(), "c n=v;Carrier;"},
        {(start + L"<Name type='string'>n</Name><Value type='string'>w</Value>" + end).c_str(),
         "c n=v;Carrier;"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(one.unfolded, Unfolded(one.text)) << one.text.c_str();

    const CarryingError carrier(cases[0].text);
    const auto unfoldAndFile = [&] { Filed(MException(carrier)); };
    ForEachFailingAllocation(AllocationFailure::Throws, unfoldAndFile, [](ShortageOutcome outcome) {
        EXPECT_NE(ShortageOutcome::Completed, outcome);
    });
}

TEST(ErrorFiling, FatalErrorOfOneModuleIsCarriedIntoAnother)
{
    const std::string chain = "Carrier pressure=17;Plant.Run:Stopped & cold;";
    const std::wstring first = FailModule(L"failing-module.dll", L"");
    EXPECT_EQ(chain + "Carrier;", Unfolded(first.c_str()));
    const std::wstring second = FailModule(L"carrying-module.dll", first);
    EXPECT_EQ(chain + chain + "Carrier;", Unfolded(second.c_str()));
}

TEST(ErrorFiling, FailedWriteEndsTheChainAndLeavesTheGroupOfAParameterOpen)
{
    MError error(L"code");
    error.AddParameter(L"name", L"value");
    MException exception(error);
    exception.AddError(MError(L"second"));
    const char* const calls[] = {"(",          "(()",          "((=))",        "((=())",
                                 "((=(=))",    "((=(==))",     "((=(==)))",    "((=(==)))",
                                 "((=(==))()", "((=(==))(=))", "((=(==))(=))", "((=(==))(=))"};
    std::size_t failing = 0;
    for (const char* const told : calls) {
        ScriptedFiler out(++failing);
        MFilerTaggedPair filer(nullptr, &out);
        EXPECT_FALSE(exception.Write(filer, L"X"));
        EXPECT_EQ(told, out.calls);
    }
}

TEST(MFilerTaggedPair, GroupsGoToBothWhateverTheFirstAnswersAndNoneFails)
{
    MInFilerTaggedXml in(L"<r><n type='uint'>5</n><a/></r>", nullptr, nullptr);
    ScriptedFiler out(6);
    MFilerTaggedPair filer(&in, &out);
    unsigned int number = 0;
    EXPECT_TRUE(filer.ReadUInt32(L"n", &number, 0) && filer.WriteUInt32(L"n", number));
    EXPECT_TRUE(filer.BeginGroup(L"a"));
    EXPECT_FALSE(filer.BeginGroup(L"b"));
    EXPECT_TRUE(filer.EndGroup() && filer.EndGroup());
    EXPECT_FALSE(filer.EndGroup() || filer.EndGroup());
    EXPECT_EQ("(())))", out.calls);

    MFilerTaggedPair none(nullptr, nullptr);
    MException exception = MakeException();
    MError error = *exception.GetError(0);
    EXPECT_FALSE(error.Write(none, L"E") || error.Read(none, L"E", error));
    EXPECT_TRUE(error.GetCode().IsEmpty() && error.GetParameters().empty());
    EXPECT_TRUE(exception.ReadErrors(none, exception) && exception.Write(none, L"X"));
    EXPECT_EQ(0u, exception.GetErrorCount());
}
