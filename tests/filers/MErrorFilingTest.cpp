#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/support/Allocations.h"
#include "tests/support/Raised.h"

#include <windows.h>

namespace
{

/// An error that carries a filed chain.
struct CarryingError : MError {
    explicit CarryingError(const MString& text) : MError(L"Carrier"), text(text) {}
    MString GetChainText() const override { return text; }
    MDynObject* Clone() const override { return new CarryingError(*this); }
    MString text;
};

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

const int never = 0;
const int always = -1;

/// Tells its calls, and answers false to the `failing`th.
struct Script {
    bool Tell(char call)
    {
        calls += call;
        ++count;
        return failing != always && count != failing;
    }

    std::string& calls;
    const int failing;
    int count;
};

struct ScriptedIn : MInFilerTaggedXml {
    explicit ScriptedIn(const Script& script) : MInFilerTaggedXml(L"", L"", L""), script(script) {}
    bool ReadString(const MString&, MString&, const MString&) override { return script.Tell('s'); }
    bool ReadUInt32(const MString&, unsigned*, unsigned) override { return script.Tell('u'); }
    bool BeginGroup(const MString&) override { return script.Tell('['); }
    bool EndGroup() override { return script.Tell(']'); }
    Script script;
};

struct ScriptedOut : MOutFilerTaggedXml {
    explicit ScriptedOut(const Script& script) : MOutFilerTaggedXml(L"r", L""), script(script) {}
    bool WriteString(const MString&, const MString&) override { return script.Tell('='); }
    bool WriteUInt32(const MString&, unsigned) override { return script.Tell('#'); }
    bool BeginGroup(const MString&) override { return script.Tell('('); }
    bool EndGroup() override { return script.Tell(')'); }
    Script script;
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

TEST(ErrorFiling, FailedWriteEndsTheChainAndLeavesTheGroupOfAParameterOpen)
{
    MError error(L"code");
    error.AddParameter(L"name", L"value");
    MException exception(error);
    exception.AddError(MError(L"second"));
    const char* const calls[] = {"(",          "(()",          "((=))",        "((=())",
                                 "((=(=))",    "((=(==))",     "((=(==)))",    "((=(==)))",
                                 "((=(==))()", "((=(==))(=))", "((=(==))(=))", "((=(==))(=))"};
    int failing = 0;
    for (const char* const expected : calls) {
        std::string told;
        ScriptedOut out({told, ++failing, 0});
        MFilerTaggedPair filer(nullptr, &out);
        EXPECT_FALSE(exception.Write(filer, L"X"));
        EXPECT_EQ(expected, told);
    }
}

TEST(ErrorFiling, RegistryKeepsAChainOrAnErrorAsOneText)
{
    const MString name(L"last failure, as text");
    const MException exception = MakeException();
    IOutFilerTaggedRegistry out(L"ErrorFilingTest");
    IInFilerTaggedRegistry in(L"ErrorFilingTest", false);
    MOutFilerTaggedXml document(L"r", nullptr);
    MFilerTaggedPair filer(&in, &out);
    MFilerTaggedPair mixed(&in, &document);
    MException chain;
    MError error;
    MString text;
    EXPECT_FALSE(chain.Read(filer, name, chain) || error.Read(filer, name, error));
    EXPECT_TRUE(exception.Write(filer, name) && exception.GetError(0)->Write(filer, L"error"));
    EXPECT_TRUE(in.ReadString(name, text, MString()));
    EXPECT_STREQ(Filed(exception).c_str(), text.c_str());
    EXPECT_EQ("Pump.Drain:Blocked Z=<&> status=258;Unspecified error;Carrier;", Unfolded(text));
    EXPECT_TRUE(chain.Read(filer, name, chain) && error.Read(filer, L"error", error));
    EXPECT_EQ(2u, chain.GetErrorCount());
    EXPECT_EQ("Pump.Drain:Blocked Z=<&> status=258", FailureText(MException(error)));

    EXPECT_FALSE(chain.Read(filer, L"error", chain) || error.Read(filer, name, error));
    EXPECT_FALSE(chain.WriteErrors(filer) || chain.ReadErrors(filer, chain));
    EXPECT_FALSE(chain.Write(mixed, name) || chain.Read(mixed, name, chain));
    EXPECT_FALSE(error.Write(mixed, name) || error.Read(mixed, name, error));
    EXPECT_EQ("Unspecified error", FailureText(chain));
    EXPECT_FALSE(error.GetCode().IsEmpty());
    const auto write = [&] { MException().Write(filer, name); };
    ForEachFailingAllocation(AllocationFailure::Throws, write, [&](ShortageOutcome) {
        EXPECT_TRUE(chain.Read(filer, name, chain) && chain.GetErrorCount() == 2);
    });
    EXPECT_TRUE(chain.Read(filer, name, chain) && chain.GetErrorCount() == 0);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\ErrorFilingTest");
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
}

// Whatever each of the two answers, and whichever of them are there.
TEST(MFilerTaggedPair, AsksBothInOrderForGroupsAndOneForAValue)
{
    for (unsigned bits = 0; bits < 16; ++bits) {
        const bool isIn = bits & 1, isOut = bits & 2, failsIn = bits & 4, failsOut = bits & 8;
        std::string told, expected;
        for (const char call : std::string("[(])su=#"))
            if (std::string("[]su").find(call) != std::string::npos ? isIn : isOut)
                expected += call;
        ScriptedIn in({told, failsIn ? always : never, 0});
        ScriptedOut out({told, failsOut ? always : never, 0});
        MFilerTaggedPair filer(isIn ? &in : nullptr, isOut ? &out : nullptr);
        const bool groups = !(isIn && failsIn) && !(isOut && failsOut);
        unsigned int number = 0;
        MString text;
        EXPECT_EQ(groups, filer.BeginGroup(L"a"));
        EXPECT_EQ(groups, filer.EndGroup());
        EXPECT_EQ(isIn && !failsIn, filer.ReadString(L"a", text, L""));
        EXPECT_EQ(isIn && !failsIn, filer.ReadUInt32(L"a", &number, 0));
        EXPECT_EQ(isOut && !failsOut, filer.WriteString(L"a", text));
        EXPECT_EQ(isOut && !failsOut, filer.WriteUInt32(L"a", number));
        EXPECT_EQ(expected, told);
    }
}
