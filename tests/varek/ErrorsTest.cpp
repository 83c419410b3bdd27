// Texts, failures, chains, and the line that traces.

#include "varek/Errors.h"
#include "diagnostics/FlowEvent.h"
#include "diagnostics/MFlowLogger.h"
#include "engine/PlatformEvent.h"
#include "foundation/MErrorOutOfMemory.h"
#include "tests/support/LeakCheck.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include "varek/Testing.h"

#include <climits>
#include <sstream>

#include <windows.h>

namespace
{

struct Named {
    operator std::wstring() const { return L"named"; }
};

enum class Grade : unsigned char { Low = 3 };

struct Kettle {
    VAREK_TRACED_CLASS(Kettle);

    Kettle() { VAREK_TRACE(); }

    template <class T>
    void Heat(T degrees)
    {
        VAREK_TRACE(degrees, this);
        [this, degrees] { VAREK_TRACE(degrees > 5); }();
        if (degrees > 80)
            VAREK_RAISE(L"Boils").With(L"degrees", degrees).Throw();
    }

    static void Describe() { VAREK_TRACE_STATIC(L'x'); }
};

/// What an error shows whose parameters are named by letters.
template <class... Values>
std::string Shown(const Values&... values)
{
    static MFlowLocation location(L"Class", L"Function");
    wchar_t name[] = L"a";
    SetLastError(5);
    varek::Failure failure = varek::Raise(location, L"Code");
    const int each[] = {(failure.With(name, values), ++*name)...};
    return Raised(
        [&] { failure.WithResult(E_ACCESSDENIED).WithLastError().With(L"a", each[0]).Throw(); });
}

void Free()
{
    VAREK_TRACE(Grade::Low);
    VAREK_RAISE(L"Lost").Throw();
}

} // namespace

TEST(Text, ComparesJoinsStreamsAndGoesBothWays)
{
    const std::wstring samples[] = {L"", L"a", L"ab", L"b", L"Z", L"\x20AC"};
    for (const std::wstring& a : samples)
        for (const std::wstring& b : samples) {
            const MString left(a.c_str()), right(b.c_str());
            EXPECT_TRUE((left == right) == (a == b) && (left != b) == (a != b));
            EXPECT_TRUE((left < right) == (a < b) && (a > right) == (a > b));
            EXPECT_TRUE((left <= b.c_str()) == (a <= b) && (a.c_str() >= right) == (a >= b));
            EXPECT_TRUE(varek::ToString(left + right) == a + b && left + b == a + right);
            EXPECT_EQ(a, std::wstring(begin(left), end(left)));
            EXPECT_EQ(a.c_str()[a.size() / 2], left[left.GetLength() / 2]);
            std::wostringstream out;
            out << left << L"|" << right;
            EXPECT_EQ(a + L"|" + b, out.str());
            EXPECT_EQ(a + b, varek::FromUtf8(varek::ToUtf8(left + right)));
        }
    EXPECT_EQ("\xE2\x82\xAC", varek::ToUtf8(L"\x20AC"));
    EXPECT_TRUE(MString() == static_cast<const wchar_t*>(nullptr));
}

TEST(Raise, ShowsValuesOfEveryKind)
{
    EXPECT_EQ("Class.Function:Code a=-1 b=200 c=c d=d e=-300 f=4294967295 g=-9223372036854775808 "
              "h=18446744073709551615 hresult=80070005h i=0.10000000000000001 j=0.5 k=true l=3 "
              "m=0000000000000abch n=narrow o=wide p=standard q=own r=named s= t=fffeh "
              "u=0.25 v=false w= winErrorCode=5",
              Shown(static_cast<signed char>(-1), static_cast<unsigned char>(200), 'c', L'd',
                    static_cast<short>(-300), 4294967295u, LLONG_MIN, ULLONG_MAX, 0.1, 0.5f, true,
                    Grade::Low, reinterpret_cast<void*>(0xABC), "narrow", L"wide",
                    std::wstring(L"standard"), MString(L"own"), Named(),
                    static_cast<const wchar_t*>(nullptr), varek::Hex(static_cast<short>(-2)), 0.25L,
                    false, static_cast<const char*>(nullptr)));
}

TEST(Errors, OfAChainAreWalkedFoundAndToldInOneLine)
{
    MException exception;
    EXPECT_EQ("no error", varek::What(exception));
    for (const wchar_t* code : {L"Valve.Open:Stuck", L"Pump.Drain:RunsDry", L"Bare"}) {
        MError error(code);
        error.AddParameter(L"code", code);
        exception.AddError(error);
    }
    exception.AddError(UnclonableError()); // a null entry, which is passed over
    exception.AddError(MErrorOutOfMemory());
    std::wstring codes;
    const varek::Errors errors(exception);
    for (auto error = errors.begin(); error != errors.end();)
        codes += varek::ToString((error++)->GetCode()) + L"|";
    EXPECT_EQ(L"Valve.Open:Stuck|Pump.Drain:RunsDry|Bare||", codes);
    EXPECT_EQ(exception.GetError(1), varek::FindError(exception, L"RunsDry"));
    EXPECT_EQ(exception.GetError(0), varek::FindError(exception, L"Valve.Open:Stuck"));
    EXPECT_EQ(exception.GetError(2), varek::FindError(exception, L"Bare"));
    EXPECT_EQ(nullptr, varek::FindError(exception, L"Open"));
    EXPECT_TRUE(varek::ParameterOf(*exception.GetError(2), L"code") == L"Bare");
    EXPECT_TRUE(varek::ParameterOf(*exception.GetError(2), L"none") == L"");
    EXPECT_EQ("Out of memory, caused by Bare (code=Bare), caused by Pump.Drain:RunsDry "
              "(code=Pump.Drain:RunsDry), caused by Valve.Open:Stuck (code=Valve.Open:Stuck)",
              varek::What(exception));
    EXPECT_EQ("std::exception", varek::What(std::exception()));
}

TEST(Trace, NamesClassesFunctionsAndObjectsWhereverTheLineStands)
{
    LeakCheck::Skip(); // the names stay
    const varek::Recording recording;
    Kettle kettle;
    kettle.Heat(9ULL);
    Kettle::Describe();
    EXPECT_EQ("Kettle.Heat:Boils degrees=90", Raised([&] { kettle.Heat(90); }));
    EXPECT_EQ("Free:Lost", Raised(Free));
    MFlowLogger::GetInstance()->GetImplementation()->LogEvent(FlowEventTimingPoint, 1, 2, 0, 5, 0);
    std::string told;
    for (const varek::Record& one : recording.GetRecords())
        told += one.kind == "Scope_push"  ? one.className + "." + one.function + "{"
                : one.kind == "Scope_pop" ? "}"
                                          : one.error + " in " + one.className + ";";
    EXPECT_EQ("Kettle.Kettle{}Kettle.Heat{Kettle.operator(){}}Kettle.Describe{}Kettle.Heat{Kettle."
              "operator(){}Boils in Kettle;}(unknown).Free{Lost in (unknown);}(1, 2) in (unknown);",
              told);
    recording.Expect(varek::ScopeEnd(L"Kettle", L"Describe")).Before(varek::Error(L"Boils"));
}

TEST(Testing, WhatIsNotAsExpectedIsToldAndLeaksAreCounted)
{
    LeakCheck::Skip();
    std::string told;
    varek::Recording recording([&](const std::string& finding) { told = finding; });
    Raised([] { Kettle().Heat(90); });
    recording.Expect(varek::Error(L"Boils")).Before(varek::Scope(L"Kettle", L"Heat"));
    EXPECT_EQ(0u,
              told.find("there is no Scope_push Kettle Heat among\n% Scope_pop in_class Kettle"));
    recording.ExpectNone(varek::Error(L"Boils"));
    EXPECT_EQ(0u, told.find("not expected: % Root_error Boils in_class Kettle at Heat"));
    varek::Recording([&](const std::string&) { ADD_FAILURE(); }).ExpectNone(varek::Error(L"Boils"));

    for (int i = 0; i < 0x20000; ++i)
        MFlowLocation(L"Kettle", L"Heat").LogTimingPoint();
    EXPECT_EQ("varek.Recording:Overrun", Raised([&] { recording.GetRecords(); }));

    const varek::Leaks leaks;
    const auto block = std::make_unique<int>();
    const PlatformEvent handle(EventReset::Manual);
    EXPECT_EQ(1, leaks.Blocks());
    EXPECT_EQ(1, leaks.Handles());
}
