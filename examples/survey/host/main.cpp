#include "examples/survey/host/Console.h"
#include "examples/survey/host/Options.h"
#include "examples/survey/host/SurveyHost.h"
#include "foundation/MException.h"

#include <cstdlib>

namespace
{

const wchar_t help[] =
    L"usage: survey-host [OPTION...] [--] FILE...\n"
    L"\n"
    L"Surveys files on the engine thread of survey.dll: bytes, lines, words, longest line, "
    L"CRC-32.\n"
    L"\n"
    L"  --dump   print the flight recorder at the end: the host's and the module's events\n"
    L"  --report print a report again: the FILEs, or else the one of the last run\n"
    L"  --fatal  let an exception end an engine thread first, to see its text arrive\n"
    L"  --crash  fault on the engine thread first, to see a minidump and a log being written\n"
    L"  --help   this text\n"
    L"\n"
    L"The report of a run goes to survey-report.xml in the current folder, unless the registry\n"
    L"names another file: HKEY_CURRENT_USER\\Software\\Varek\\Survey\\Settings, ReportFile.\n"
    L"\n"
    L"Exit codes: 0 all files were surveyed or read, 1 some could not be, 2 the command line is "
    L"wrong,\n"
    L"3 the module failed; after a fault, the code that Windows gives (0xC0000005 with --crash).\n";

enum ExitCode { Complete = 0, Incomplete = 1, Usage = 2, Failed = 3 };

std::wstring FailureCode(const MException& exception)
{
    const MError* const failure = exception.GetFailure();
    return failure ? failure->GetMessageText().c_str() : L"(no error)";
}

int RunHost(const Options& options)
{
    try {
        return SurveyHost(options).Run() ? Complete : Incomplete;
    } catch (MException& exception) {
        Console::Complain(L"survey-host: the module failed: " + FailureCode(exception) + L"\n");
        return Failed;
    }
}

} // namespace

int wmain(int argc, wchar_t** argv)
{
    Options options;
    std::wstring unknown;
    if (!Options::Parse(argc, argv, options, unknown)) {
        Console::Complain(L"survey-host: unknown option " + unknown + L"\n" + help);
        return Usage;
    }
    if (options.help) {
        Console::Print(help);
        return Complete;
    }
    if (!options.AskForWork()) {
        Console::Complain(std::wstring(L"survey-host: nothing to do\n") + help);
        return Usage;
    }
    return RunHost(options);
}
