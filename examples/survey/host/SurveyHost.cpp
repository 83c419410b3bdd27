#include "examples/survey/host/SurveyHost.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "examples/survey/host/Console.h"
#include "examples/survey/host/MiniDumpWriter.h"
#include "examples/survey/host/Options.h"
#include "examples/survey/module/Survey.h"
#include "foundation/MException.h"
#include "module/Runtime.h"

#include <iomanip>
#include <iostream>
#include <sstream>

const wchar_t SurveyHost::className[] = L"SurveyHost";

namespace
{

const ClassName registered(SurveyHost::className);

const wchar_t miniDumpPath[] = L"survey-host.dmp";

/// The host's callback for an exception that ends an engine thread.
class FatalTextPrinter : public Varek::Runtime::CallbackFunctor1Param<const std::wstring&>
{
public:
    void operator()(const std::wstring& text) override
    {
        Console::Complain(L"an engine thread has ended: " + text + L"\n");
    }
};

} // namespace

SurveyHost::SurveyHost(const Options& options) : options(options), progress(options.paths) {}

bool SurveyHost::Run()
{
    GetDiagnosticsRegistry()->RegisterThreadName(L"Host");
    Connect();
    if (options.crash)
        SurveyCrash();
    const bool complete = SurveyAll();
    Varek::Runtime::Shutdown();
    if (options.dump)
        PrintDump();
    return complete;
}

void SurveyHost::Connect()
{
    typedef Varek::Runtime::CallbackFunctor1Param<const std::wstring&> TextCallback;
    typedef Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*> FaultCallback;

    Varek::Runtime::AttachMFlowLogger(MFlowLogger::GetInstance());
    Varek::Runtime::RegisterFatalErrorHandlers(
        std::auto_ptr<TextCallback>(new FatalTextPrinter),
        std::auto_ptr<FaultCallback>(new MiniDumpWriter(miniDumpPath)));
}

bool SurveyHost::SurveyAll()
{
    static MFlowLocation location(className, L"SurveyAll");
    MFlowScope scope(location.SetObject(this));
    bool complete = true;
    for (std::uint32_t survey = 0; survey < options.paths.size(); ++survey)
        complete &= SurveyOne(survey);
    return complete;
}

bool SurveyHost::SurveyOne(std::uint32_t survey)
{
    const std::wstring& path = options.paths[survey];
    SurveyReport report = {};
    const MExceptionSlot outcome = SurveyFile(path, survey, &progress, report);

    const std::uint32_t errors = outcome->GetErrorCount();
    if (errors != 0) {
        ShowFailure(path, *outcome->GetError(static_cast<std::int32_t>(errors - 1)));
        return false;
    }
    progress.AwaitCompletion();
    ShowReport(path, report);
    return true;
}

void SurveyHost::ShowReport(const std::wstring& path, const SurveyReport& report)
{
    std::wostringstream text;
    text << path << L"\n  bytes " << report.bytes << L", lines " << report.lines << L", words "
         << report.words << L", longest line " << report.longestLine << L", crc32 " << std::hex
         << std::setfill(L'0') << std::setw(8) << report.crc32 << std::dec << L"\n";
    if (report.xml.isXml)
        text << L"  xml, " << (report.xml.wellFormed ? L"well-formed" : report.xml.finding.c_str())
             << L"; elements " << report.xml.elements << L", depth " << report.xml.depth << L"\n";
    Console::Print(text.str());
}

void SurveyHost::ShowFailure(const std::wstring& path, const MError& failure)
{
    std::wostringstream text;
    text << path << L"\n  failed: " << failure.GetCode().c_str() << L"\n";
    for (const MError::Parameters::value_type& parameter : failure.GetParameters())
        text << L"    " << parameter.first.c_str() << L" = " << parameter.second.c_str() << L"\n";
    Console::Complain(text.str());
}

/// The host's own log: since the two are joined, the module's events stand in it too.
void SurveyHost::PrintDump()
{
    std::ostringstream dump;
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(dump);
    std::cout << dump.str() << std::flush;
}
