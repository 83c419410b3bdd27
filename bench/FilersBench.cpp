// What it costs to file values and error chains, and to read them back.

#include "bench/PropertyTreePeer.h"
#include "bench/support/Comparison.h"
#include "bench/support/Report.h"
#include "bench/support/Sample.h"
#include "bench/support/TickClock.h"
#include "filers/IOutFilerTaggedRegistry.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "foundation/MException.h"
#include "xml/MXmlMarkup.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include <windows.h>

namespace
{

const unsigned few = 10000;
const unsigned many = 100000;

/// Ends the benchmark when a side does not do what it is measured for.
void Require(bool done)
{
    if (done)
        return;
    std::printf("a side of the comparison fails\n");
    std::exit(1);
}

MString WriteValues(unsigned count)
{
    MOutFilerTaggedXml filer(L"Values", nullptr);
    bool written = true;
    for (unsigned i = 0; i < count; i += 4)
        written = written && filer.WriteInt32(L"Number", static_cast<int>(i)) &&
                  filer.WriteString(L"Title", L"a text of moderate length") &&
                  filer.WriteDouble(L"Ratio", i * 0.25) && filer.WriteBool(L"Open", true);
    MString text;
    Require(written && filer.GetDocumentText(&text));
    return text;
}

double ReadValues(const MString& text, unsigned count)
{
    MInFilerTaggedXml filer(text, L"Values", nullptr);
    bool read = true;
    double sum = 0;
    for (unsigned i = 0; i < count; i += 4) {
        int number = 0;
        MString title;
        double ratio = 0;
        bool open = false;
        read = read && filer.ReadInt32(L"Number", &number, 0) &&
               filer.ReadString(L"Title", title, L"") && filer.ReadDouble(L"Ratio", &ratio, 0) &&
               filer.ReadBool(L"Open", &open, false);
        sum += number + title.GetLength() + ratio + open;
    }
    Require(read);
    return sum;
}

Comparison::Work Repeat(void (*work)(unsigned), unsigned argument, unsigned repetitions)
{
    return [=](unsigned times) {
        for (unsigned i = 0; i < times * repetitions; ++i)
            work(argument);
    };
}

void WriteOnly(unsigned count)
{
    WriteValues(count);
}

void ReadOnly(unsigned count)
{
    static const MString fewText = WriteValues(few);
    static const MString manyText = WriteValues(many);
    ReadValues(count == few ? fewText : manyText, count);
}

void CompareValues()
{
    const MString text = WriteValues(many);
    const std::wstring peerText = PropertyTreePeer::WriteValues(many);
    Require(ReadValues(text, many) == PropertyTreePeer::ReadValues(peerText));

    Report::Columns("100,000 typed values");
    Comparison("write, as ten times 10,000", 1, Repeat(WriteOnly, many, 1),
               Repeat(WriteOnly, few, many / few))
        .AtMost(1.2);
    Comparison("read, as ten times 10,000", 1, Repeat(ReadOnly, many, 1),
               Repeat(ReadOnly, few, many / few))
        .AtMost(1.2);
    Comparison(
        "write : PropertyTree", 1, [](unsigned) { WriteValues(many); },
        [](unsigned) { PropertyTreePeer::WriteValues(many); })
        .AtMost(0.5);
    Comparison(
        "read : PropertyTree", 1, [&](unsigned) { ReadValues(text, many); },
        [&](unsigned) { PropertyTreePeer::ReadValues(peerText); })
        .AtMost(0.5);
}

MException MakeChain()
{
    MException exception;
    for (int i = 0; i < 10; ++i) {
        MError error(L"MEngineThread.WaitForEvents:WaitFailed");
        error.AddParameter(L"winErrorCode", 6u, false);
        error.AddParameter(L"status", 4294967295u, true);
        error.AddParameter(L"object", MString(L"Command processor thread"));
        exception.AddError(error);
    }
    return exception;
}

MString WriteChain(const MException& exception)
{
    MOutFilerTaggedXml document(L"ExceptionChain", nullptr);
    MFilerTaggedPair filer(nullptr, &document);
    MString text;
    Require(exception.Write(filer, L"Exception") && document.GetDocumentText(&text));
    return text;
}

std::uint32_t ReadChain(const MString& text)
{
    MInFilerTaggedXml document(text, L"ExceptionChain", nullptr);
    MFilerTaggedPair filer(&document, nullptr);
    MException exception;
    Require(filer.BeginGroup(L"Exception") && exception.ReadErrors(filer, exception));
    return exception.GetErrorCount();
}

void CompareChain()
{
    const MException exception = MakeChain();
    const MString text = WriteChain(exception);
    const std::wstring peerText = PropertyTreePeer::WriteChain(exception);
    Require(ReadChain(text) == 10 && PropertyTreePeer::ReadChain(peerText) == 40);
    const auto repeat = [](auto work) {
        return [work](unsigned times) {
            for (unsigned i = 0; i < times; ++i)
                work();
        };
    };

    Report::Columns("A chain of 10 errors with 3 parameters each");
    Comparison("write : PropertyTree", 5, repeat([&] { WriteChain(exception); }),
               repeat([&] { PropertyTreePeer::WriteChain(exception); }))
        .Show();
    Comparison("read : PropertyTree", 5, repeat([&] { ReadChain(text); }),
               repeat([&] { PropertyTreePeer::ReadChain(peerText); }))
        .Show();
    Comparison(
        "write and read : PropertyTree", 5, repeat([&] { ReadChain(WriteChain(exception)); }),
        repeat([&] { PropertyTreePeer::ReadChain(PropertyTreePeer::WriteChain(exception)); }))
        .AtMost(1);
}

/// Median time of an operation, taken over some rounds.
template <class Work>
double NanosecondsOf(Work work)
{
    const unsigned times = 200;
    Sample sample;
    for (int round = 0; round < 51; ++round) {
        const std::uint64_t begin = TickClock::Now();
        for (unsigned i = 0; i < times; ++i)
            work();
        sample.Add(TickClock::Nanoseconds(TickClock::Now() - begin) / times);
    }
    return sample.Median();
}

/// The parts that filing is made of; a chain of this size has 40 groups and 70 texts.
void ShowParts()
{
    const MLocale& classic = MLocale::GetClassicLocale();
    const MString text = WriteChain(MakeChain());
    MXmlMarkup document;
    document.LoadText(text.c_str());
    document.FindElement();
    document.EnterElement();
    Report::Heading("Where the time goes");
    Report::Figure("copy of the classic locale, one a filer",
                   NanosecondsOf([&] { MLocale copy(classic); }), "ns");
    Report::Figure("stream made, number in, text out", NanosecondsOf([&] {
                       std::wostringstream stream;
                       stream.imbue(classic.GetStreamLocale());
                       stream << 12345;
                       stream.str();
                   }),
                   "ns");
    Report::Figure("element added to a document",
                   NanosecondsOf([&] { document.AddElement(L"Name", L"winErrorCode", 0); }), "ns");
    Report::Figure("element added, with its attribute", NanosecondsOf([&] {
                       document.AddElement(L"Name", L"winErrorCode", 0);
                       document.SetAttribute(document.GetMainIndex(), L"type", L"string");
                   }),
                   "ns");
    Report::Figure("text of the chain parsed", NanosecondsOf([&] {
                       MXmlMarkup parsed;
                       parsed.LoadText(text.c_str());
                   }),
                   "ns");
}

/// The calls that one write needs, and nothing else.
void WriteByHand(const wchar_t* area, const wchar_t* group, const wchar_t* name, DWORD value)
{
    HKEY system = nullptr;
    HKEY maker = nullptr;
    HKEY areaKey = nullptr;
    HKEY groupKey = nullptr;
    const REGSAM access = KEY_READ | KEY_WRITE;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, access, &system);
    RegCreateKeyExW(system, L"Varek", 0, nullptr, 0, access, nullptr, &maker, nullptr);
    RegCreateKeyExW(maker, area, 0, nullptr, 0, access, nullptr, &areaKey, nullptr);
    RegCloseKey(maker);
    RegCloseKey(system);
    RegCreateKeyExW(areaKey, group, 0, nullptr, 0, access, nullptr, &groupKey, nullptr);
    RegCloseKey(areaKey);
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(&value);
    Require(RegSetValueExW(groupKey, name, 0, REG_DWORD, bytes, sizeof value) == ERROR_SUCCESS);
    RegCloseKey(groupKey);
}

void CompareRegistry()
{
    const MString tag(L"Count");
    IOutFilerTaggedRegistry filer(L"FilersBench");
    filer.BeginGroup(L"Group");
    Report::Columns("Registry");
    Comparison(
        "write : the bare calls", 10,
        [&](unsigned times) {
            for (unsigned i = 0; i < times; ++i)
                Require(filer.WriteUInt32(tag, i));
        },
        [](unsigned times) {
            for (unsigned i = 0; i < times; ++i)
                WriteByHand(L"FilersBench", L"Group", L"Count", i);
        })
        .AtMost(1.05);
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\FilersBench");
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Varek");
}

} // namespace

int main()
{
    CompareValues();
    CompareChain();
    ShowParts();
    CompareRegistry();
}
