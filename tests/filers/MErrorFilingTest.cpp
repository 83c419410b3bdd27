#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/filers/ChainModule.h"
#include "tests/support/Allocations.h"

#include <windows.h>

namespace
{

MException MakeException()
{
    MError error(L"Pump.Drain:Blocked");
    error.AddParameter(L"status", 258u, false);
    error.AddParameter(L"Z", MString(L"<&>"));
    error.AddParameter(L"a", MString());
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

/// The Codes and parameters that an exception has whose only error carries `text`.
std::wstring Unfolded(const MString& text)
{
    const MException exception{CarryingError(text)};
    std::wstring summary;
    for (std::uint32_t i = 0; i < exception.GetErrorCount(); ++i) {
        const MError& error = *exception.GetError(static_cast<std::int32_t>(i));
        summary += error.GetCode().c_str();
        for (const auto& parameter : error.GetParameters())
            summary +=
                std::wstring(L" ") + parameter.first.c_str() + L"=" + parameter.second.c_str();
        summary += L";";
    }
    return summary;
}

class KeptText : public TextReceiver
{
public:
    explicit KeptText(std::wstring& text) : text(text) {}
    void operator()(const std::wstring& given) override { text = given; }

private:
    std::wstring& text;
};

/// The fatal error text of a module in which an error fails that carries `text`.
std::wstring FailModule(const wchar_t* file, const std::wstring& text)
{
    std::wstring fatal;
    const HMODULE module = LoadLibraryW(file);
    void* const fail = reinterpret_cast<void*>(GetProcAddress(module, "FailCarrying"));
    reinterpret_cast<decltype(FailCarrying)*>(fail)(text, new KeptText(fatal));
    FreeLibrary(module);
    return fatal;
}

/// Records its calls, of which the `failing`th answers false.
class ScriptedFiler : public MOutFilerTaggedXml
{
public:
    explicit ScriptedFiler(int failing) : MOutFilerTaggedXml(L"r", nullptr), countdown(failing) {}
    bool WriteString(const MString& tag, const MString&) override { return Record(tag.c_str()); }
    bool BeginGroup(const MString&) override { return Record(L"("); }
    bool EndGroup() override { return Record(L")"); }

    std::wstring calls;

private:
    bool Record(const std::wstring& call)
    {
        calls += call + L" ";
        return --countdown != 0;
    }

    int countdown;
};

} // namespace

TEST(ErrorFiling, ChainHasItsForm)
{
    EXPECT_STREQ(L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 L"<ExceptionChain>\n<Exception>\n<Error>\n"
                 L"<Code type=\"string\">Pump.Drain:Blocked</Code>\n"
                 L"<Parameter>\n<Name type=\"string\">Z</Name>\n"
                 L"<Value type=\"string\">&lt;&amp;&gt;</Value>\n</Parameter>\n"
                 L"<Parameter>\n<Name type=\"string\">a</Name>\n"
                 L"<Value type=\"string\"/>\n</Parameter>\n"
                 L"<Parameter>\n<Name type=\"string\">status</Name>\n"
                 L"<Value type=\"string\">258</Value>\n</Parameter>\n</Error>\n"
                 L"<Error>\n<Code type=\"string\"/>\n</Error>\n"
                 L"</Exception>\n</ExceptionChain>\n",
                 Filed(MakeException()).c_str());
}

TEST(ErrorFiling, CarriedChainUnfoldsInFrontOfItsCarrierAsFarAsItCanBeRead)
{
    const std::wstring start = L"<ExceptionChain><Exception><Error><Code type='string'>c</Code>"
                               L"<Parameter><Name type='string'>n</Name>"
                               L"<Value type='string'>v</Value></Parameter><Parameter>";
    const std::wstring end = L"</Parameter></Error></Exception></ExceptionChain>";
    const std::wstring error = L"<Error><Code type='string'>c</Code></Error>";
    const struct {
        MString text;
        const wchar_t* unfolded;
    } cases[] = {
        {Filed(MakeException()), L"Pump.Drain:Blocked Z=<&> a= status=258;;Carrier;"},
        {Filed(MException()), L"Carrier;"},
        {L"something went wrong", L"Carrier;"},
        {(L"<Chain><Exception>" + error + L"</Exception></Chain>").c_str(), L"Carrier;"},
        {(L"<ExceptionChain>" + error + L"</ExceptionChain>").c_str(), L"Carrier;"},
        {(start + L"<Value type='string'>w</Value>" + end).c_str(), L"c n=v;Carrier;"},
        {(start + L"<Name type='string'>n</Name><Value type='string'>w</Value>" + end).c_str(),
         L"c n=v;Carrier;"},
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
    const std::wstring chain = L"Carrier pressure=17;Plant.Run:Stopped & cold;";
    const std::wstring first = FailModule(L"failing-module.dll", L"");
    EXPECT_EQ(chain + L"Carrier;", Unfolded(first.c_str()));
    const std::wstring second = FailModule(L"carrying-module.dll", first);
    EXPECT_EQ(chain + chain + L"Carrier;", Unfolded(second.c_str()));
}

TEST(ErrorFiling, FailedWriteEndsTheChainAndLeavesTheGroupOfAParameterOpen)
{
    MError error(L"code");
    error.AddParameter(L"name", L"value");
    MException exception(error);
    exception.AddError(MError(L"second"));
    const std::wstring calls[] = {L"( ", L"( ", L"Code ", L"( ",    L"Name ", L"Value ",
                                  L") ", L") ", L"( ",    L"Code ", L") ",    L") "};
    const wchar_t* const endsAfterFailure[] = {L"",     L") ", L") ) ", L") ) ", L") ) ", L") ) ",
                                               L") ) ", L") ", L") ",   L") ) ", L") ",   L""};
    std::wstring expected;
    for (int i = 0; i < 12; ++i) {
        ScriptedFiler out(i + 1);
        MFilerTaggedPair filer(nullptr, &out);
        EXPECT_FALSE(exception.Write(filer, L"X"));
        expected += calls[i];
        EXPECT_EQ(expected + endsAfterFailure[i], out.calls);
    }
}

TEST(MFilerTaggedPair, GroupsGoToBothWhateverTheFirstAnswers)
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
    EXPECT_EQ(L"( ( ) ) ) ) ", out.calls);
}

TEST(ErrorFiling, AbsentFilerFails)
{
    MFilerTaggedPair filer(nullptr, nullptr);
    MException exception = MakeException();
    MError error(L"code");
    error.AddParameter(L"name", L"value");
    EXPECT_FALSE(error.Write(filer, L"E") || error.Read(filer, L"E", error));
    EXPECT_TRUE(error.GetCode().IsEmpty() && error.GetParameters().empty());
    EXPECT_TRUE(exception.ReadErrors(filer, exception) && exception.Write(filer, L"X"));
    EXPECT_EQ(0u, exception.GetErrorCount());
}
