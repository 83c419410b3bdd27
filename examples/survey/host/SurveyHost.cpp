#include "examples/survey/host/SurveyHost.h"

#include "diagnostics/MFlowLogger.h"
#include "examples/survey/host/Console.h"
#include "examples/survey/host/HostRegistry.h"
#include "examples/survey/host/Options.h"
#include "examples/survey/host/ReportFile.h"
#include "examples/survey/module/Survey.h"
#include "foundation/MException.h"
#include "varek/Host.h"

#include <iostream>
#include <sstream>

namespace
{

/// A line that names the files that could not be surveyed; nothing if all could.
std::wstring NotSurveyed(const std::vector<SurveyResult>& results)
{
    std::wstring paths;
    for (const SurveyResult& result : results)
        if (result.failed)
            paths += (paths.empty() ? L"" : L", ") + result.path;
    return paths.empty() ? paths : L"not surveyed: " + paths + L"\n";
}

} // namespace

SurveyHost::SurveyHost(const Options& options) : options(options), progress(options.paths) {}

bool SurveyHost::Run()
{
    if (options.report)
        return PrintReports();
    varek::HostOptions hostOptions;
    hostOptions.dumpPrefix = L"survey-host";
    varek::Host host(L"survey.dll", hostOptions);
    if (options.fatal)
        SurveyFatal();
    if (options.crash)
        SurveyCrash();
    const bool complete = options.paths.empty() || SurveyAll();
    host.Shutdown();
    if (options.dump)
        PrintDump();
    return complete;
}

bool SurveyHost::PrintReports()
{
    std::vector<std::wstring> paths = options.paths;
    if (paths.empty())
        paths.push_back(HostRegistry::GetReportPath());

    bool complete = true;
    for (const std::wstring& path : paths) {
        std::vector<SurveyResult> results;
        const bool loaded = ReportFile(path).Load(results);
        complete &= loaded;
        if (!loaded)
            Console::Complain(path + L" is no survey report\n");
        for (const SurveyResult& result : results)
            Console::Print(result.Describe());
    }
    return complete;
}

bool SurveyHost::SurveyAll()
{
    VAREK_TRACE();
    bool complete = true;
    std::vector<SurveyResult> results;
    for (std::uint32_t survey = 0; survey < options.paths.size(); ++survey) {
        results.push_back(SurveyOne(survey));
        complete &= !results.back().failed;
    }
    Keep(results);
    return complete;
}

SurveyResult SurveyHost::SurveyOne(std::uint32_t survey)
{
    SurveyResult result;
    result.path = options.paths[survey];
    const MExceptionSlot outcome = SurveyFile(result.path, survey, &progress, result.report);

    result.failed = outcome->GetErrorCount() != 0;
    if (const MError* const failure = outcome->GetFailure())
        result.failure = *failure;
    if (!result.failed)
        progress.AwaitCompletion();
    Console::Print(result.Describe());
    return result;
}

void SurveyHost::Keep(const std::vector<SurveyResult>& results)
{
    SurveyTotals totals = {};
    for (const SurveyResult& result : results) {
        totals.files += !result.failed;
        totals.bytes += result.report.bytes;
    }
    const SurveyTotals last = HostRegistry::GetLastTotals();
    HostRegistry::SetLastTotals(totals);

    const std::wstring path = HostRegistry::GetReportPath();
    const bool saved = ReportFile(path).Save(results);
    std::wostringstream text;
    text << L"in all " << totals.files << L" files, " << totals.bytes << L" bytes; last time "
         << last.files << L" files, " << last.bytes << L" bytes; "
         << (saved ? L"report in " : L"no report in ") << path << L"\n";
    Console::Print(text.str() + NotSurveyed(results));
}

/// The host's own log: since the two are joined, the module's events stand in it too.
void SurveyHost::PrintDump()
{
    std::ostringstream dump;
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(dump);
    std::cout << dump.str() << std::flush;
}
