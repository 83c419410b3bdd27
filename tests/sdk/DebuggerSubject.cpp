// What the debugger views are tried on: one of each type they show, in known states, and a crash.

#include "diagnostics/KLogger.h"
#include "engine/MCommand.h"
#include "engine/MThreadSafeFifo.h"
#include "foundation/MErrorOutOfMemory.h"
#include "foundation/MException.h"
#include "foundation/MTypedPtrArray.h"
#include "xml/MXmlMarkup.h"

#include <cstring>
#include <sstream>

namespace
{

struct DrainCommand : MCommand {
    void ExecuteGenericCommand() override {}
};

struct FillCommand : MCommand {
    void ExecuteGenericCommand() override {}
};

struct ErrorWithoutCopies : MError {
    MDynObject* Clone() const override { return nullptr; }
};

typedef MTypedPtrArray<MString, const MString&> Strings;
typedef MThreadSafeFifo<MCommand*, MCommand*> Commands;

struct Subject {
    Subject();

    void FillErrors();
    void FillQueue();
    void FillLogs();
    void FillDocuments();

    MString emptyText;
    MString text = L"\"Bl\u00E4tter\" \U0001F343";
    Strings noStrings, strings;
    MError noError;
    MError error{L"Pump.Drain:RunsDry"};
    MErrorOutOfMemory outOfMemory;
    MException noException, exception;
    DrainCommand drain;
    FillCommand fill;
    Commands noCommands, commands;
    KLogger emptyLog, log, wrappedLog;
    std::string dump;
    MXmlMarkup emptyDocument, document, illFormedDocument;
    unsigned char zeros[sizeof(KLogger)], ones[sizeof(KLogger)], overwritten[sizeof(KLogger)];
};

Subject::Subject()
{
    strings.SetGrowFactor(4);
    for (const wchar_t* const each : {L"one", L"two", L"three"})
        strings.Add(each);
    strings.RemoveAt(0);
    FillErrors();
    FillQueue();
    FillLogs();
    FillDocuments();
    std::memset(zeros, 0, sizeof zeros);
    std::memset(ones, 1, sizeof ones);
    std::memset(overwritten, 0xCD, sizeof overwritten);
}

void Subject::FillErrors()
{
    error.AddParameter(L"litres", std::int32_t(80));
    error.AddParameter(L"level", std::uint32_t(50), true);
    exception.AddError(outOfMemory);
    exception.AddError(ErrorWithoutCopies());
    exception.AddError(error);
}

// Leaves the oldest behind the newest.
void Subject::FillQueue()
{
    MCommand* taken = nullptr;
    commands.Put(&drain);
    commands.Put(&drain);
    commands.Get(taken);
    commands.Put(&fill);
}

void Subject::FillLogs()
{
    const void* const pump = reinterpret_cast<const void*>(0x1D2C5A40);
    log.SetIdName(1, "Pump");
    log.SetIdName(2, "Drain");
    log.SetIdName(3, "RunsDry");
    log.SetClassStateName(1, 4, "Open");
    log.SetMessageName(5, "Hello");
    log.SetObjectName(pump, "the pump");
    log.AddRecord(-7, 0, 0, 1, 2, pump);
    log.AddRecord(-25, 4, 0xFFFFFFFF, 1, 2, pump);
    log.SetThreadName("tester");
    log.AddRecord(-21, 5, 0, 0x80000000, 2, nullptr);
    log.AddRecord(0, 6, 7, 1, 8, nullptr);
    log.AddRecord(-105, 3, 38, 1, 2, pump);
    log.AddRecord(99, 0, 0, 9, 9, reinterpret_cast<const void*>(-1));
    std::ostringstream written;
    log.WriteDump(written);
    dump = written.str();

    for (std::uint32_t i = 0; i < 0x20000 + 2; ++i)
        wrappedLog.AddRecord(0, i, 0, 0, 0, nullptr);
}

void Subject::FillDocuments()
{
    document.LoadText(L"<list><item id='1'>first</item><item><!-- gone --><b/></item></list>");
    document.FindElement();
    document.EnterElement();
    document.FindElement();
    document.FindElement();
    document.ReplaceInnerMarkup(L"second");
    illFormedDocument.LoadText(L"<a><b></a>");
}

void Crash(const Subject& subject)
{
    static_cast<void>(subject);
    __builtin_trap(); // where the debugger looks at the subject
}

} // namespace

int main()
{
    Crash(*new Subject);
}
