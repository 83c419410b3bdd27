#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/support/Allocations.h"
#include "tests/support/Raised.h"

#include <utility>

#include <windows.h>

namespace
{

/// An error that carries a filed chain, and refuses to be filed itself.
struct CarryingError : MError {
    explicit CarryingError(const MString& text) : MError(L"Carrier"), text(text) {}
    MString GetChainText() const override { return text; }
    MDynObject* Clone() const override { return new CarryingError(*this); }
    bool Write(MFilerTaggedPair&, const MString&) const override { return false; }
    MString text;
};

MException MakeException()
{
    MError error(L"Pump.Drain:Blocked");
    error.AddParameter(L"status", 258u, false);
    error.AddParameter(L"Z", MString(L"<&>"));
    MException exception(error);
    exception.AddError(UnclonableError()); // a null entry, which is not filed
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

std::string Told(const MException& exception)
{
    std::string errors;
    for (std::uint32_t i = 0; i < exception.GetErrorCount(); ++i)
        errors += FailureText(MException(*exception.GetError(static_cast<std::int32_t>(i)))) + ";";
    return errors;
}

/// What filers have been called for, one after the other.
std::string told;

/// Filers that tell their calls, and answer false to the `failing`th.
struct Scripted {
    bool Tell(char call) { return told += call, --failing != 0; }
    int failing = 0;
};

struct ScriptedIn : MInFilerTaggedXml, Scripted {
    ScriptedIn() : MInFilerTaggedXml(L"", L"", L"") {}
    bool ReadString(const MString&, MString&, const MString&) override { return Tell('s'); }
    bool ReadUInt32(const MString&, unsigned*, unsigned) override { return Tell('u'); }
    bool BeginGroup(const MString&) override { return Tell('['); }
    bool EndGroup() override { return Tell(']'); }
};

struct ScriptedOut : MOutFilerTaggedXml, Scripted {
    ScriptedOut() : MOutFilerTaggedXml(L"r", L"") {}
    bool WriteString(const MString&, const MString&) override { return Tell('='); }
    bool WriteUInt32(const MString&, unsigned) override { return Tell('#'); }
    bool BeginGroup(const MString&) override { return Tell('('); }
    bool EndGroup() override { return Tell(')'); }
};

} // namespace

TEST(ErrorFiling, CarriedChainUnfoldsInFrontOfItsCarrierAsFarAsItCanBeRead)
{
    const std::wstring start = L"<ExceptionChain><Exception><Error><Code type='string'>c</Code>"
                               L"<Parameter><Name type='string'>n</Name>"
                               L"<Value type='string'>v</Value></Parameter><Parameter>";
    const std::wstring end = L"</Parameter></Error></Exception></ExceptionChain>";
    MException gone;
    MException().TakeFrom(gone);
    const std::wstring again = L"<Name type='string'>n</Name><Value type='string'>w</Value>";
    const struct {
        std::wstring text;
        std::string unfolded;
    } cases[] = {
        {Filed(MakeException()).c_str(), "Pump.Drain:Blocked Z=<&> status=258;Unspecified error;"},
        {Filed(MException()).c_str(), ""},
        {Filed(gone).c_str(), ""},
        {L"<ExceptionChain><Exception><Error/></Exception></ExceptionChain>", ""},
        {L"<Chain><Exception><Error><Code type='string'/></Error></Exception></Chain>", ""},
        {L"<ExceptionChain><Error><Code type='string'/></Error></ExceptionChain>", ""},
        {start + L"<Value type='string'>w</Value>" + end, "c n=v;"},
        {start + again + end, "c n=v;"},
    };
    for (const auto& one : cases) {
        const CarryingError carrier(one.text.c_str());
        EXPECT_EQ(one.unfolded + "Carrier;", Told(MException(carrier))) << one.text;
        const auto unfold = [&] { MException filed(carrier); };
        ForEachFailingAllocation(AllocationFailure::Throws, unfold, [](ShortageOutcome outcome) {
            EXPECT_NE(ShortageOutcome::Completed, outcome);
        });
    }
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
        ScriptedOut out;
        out.failing = ++failing;
        MFilerTaggedPair filer(nullptr, &out);
        EXPECT_FALSE(exception.Write(filer, L"X"));
        EXPECT_EQ(expected, std::exchange(told, ""));
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
    error.AddParameter(L"from before", 1);
    EXPECT_TRUE(exception.Write(filer, name) && exception.GetError(0)->Write(filer, L"error"));
    EXPECT_TRUE(chain.Read(filer, name, chain) && error.Read(filer, L"error", error));
    EXPECT_TRUE(in.ReadString(name, text, MString()));
    EXPECT_STREQ(Filed(exception).c_str(), text.c_str());

    EXPECT_FALSE(chain.Read(filer, L"error", chain) || error.Read(filer, name, error));
    EXPECT_FALSE(chain.Read(filer, L"nothing", chain) ||
                 MException(CarryingError(L"")).Write(filer, name) ||
                 exception.Write(filer, std::wstring(20000, L'n').c_str())); // a name too long
    EXPECT_FALSE(chain.WriteErrors(filer) || chain.ReadErrors(filer, chain));
    EXPECT_FALSE(chain.Write(mixed, name) || chain.Read(mixed, name, chain));
    EXPECT_FALSE(error.Write(mixed, L"error") || error.Read(mixed, L"error", error));
    EXPECT_EQ(Told(MException(error)) + "Unspecified error;", Told(chain));
    EXPECT_EQ("Pump.Drain:Blocked Z=<&> status=258", FailureText(MException(error)));
    const auto write = [&] { MException().Write(filer, name); };
    ForEachFailingAllocation(AllocationFailure::Throws, write, [&](ShortageOutcome) {
        EXPECT_TRUE(chain.Read(filer, name, chain) && chain.GetErrorCount() == 2);
    });
    EXPECT_TRUE(chain.Read(filer, name, chain) && chain.GetErrorCount() == 0);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\ErrorFilingTest");
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
}

TEST(MFilerTaggedPair, AsksBothInOrderForGroupsAndOneForAValue)
{
    unsigned int value = 0;
    MString text;
    ScriptedIn in;
    ScriptedOut out;
    in.failing = 1;
    out.failing = 2;
    MFilerTaggedPair both(&in, &out), none(nullptr, nullptr);
    EXPECT_FALSE(both.BeginGroup(L"a"));
    EXPECT_FALSE(both.EndGroup());
    in.failing = 2;
    EXPECT_TRUE(both.BeginGroup(L"a"));
    EXPECT_FALSE(both.EndGroup());
    EXPECT_TRUE(both.EndGroup());
    for (const int failing : {0, 1, 2}) {
        in.failing = out.failing = failing;
        EXPECT_EQ(failing != 1, both.ReadString(L"a", text, L""));
        EXPECT_EQ(failing != 1, both.WriteString(L"a", text));
        EXPECT_EQ(failing != 2, both.ReadUInt32(L"a", &value, 0));
        EXPECT_EQ(failing != 2, both.WriteUInt32(L"a", value));
    }
    EXPECT_TRUE(none.BeginGroup(L"a") && none.EndGroup());
    EXPECT_FALSE(none.ReadString(L"a", text, L"") || none.WriteString(L"a", text));
    EXPECT_FALSE(none.ReadUInt32(L"a", &value, 0) || none.WriteUInt32(L"a", value));
    EXPECT_EQ("[(])[(])])s=u#s=u#s=u#", std::exchange(told, ""));
}
