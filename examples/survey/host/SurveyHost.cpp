#include "examples/survey/host/SurveyHost.h"

#include "diagnostics/MFlowLogger.h"
#include "examples/survey/host/Console.h"
#include "examples/survey/host/HostRegistry.h"
#include "examples/survey/host/Options.h"
#include "examples/survey/module/Survey.h"
#include "foundation/MException.h"
#include "varek/Host.h"

#include <future>
#include <iostream>
#include <sstream>

namespace
{

/// A line that names the files that could not be surveyed; nothing if all could.
std::wstring NotSurveyed(const SurveyResults& results)
{
    std::wstring paths;
    for (const SurveyResult& result : results.all)
        if (result.failed)
            paths += (paths.empty() ? L"" : L", ") + result.path;
    return paths.empty() ? paths : L"not surveyed: " + paths + L"\n";
}

void PrintProgress(const std::wstring& path, std::uint32_t percent)
{
    Console::Print(L"  ... " + path + L" " + std::to_wstring(percent) + L" %\n");
}

} // namespace

SurveyHost::SurveyHost(const Options& options) : options(options) {}

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
        paths.push_back(HostRegistry::Load().settings.reportFile);

    bool complete = true;
    for (const std::wstring& path : paths) {
        SurveyResults results;
        const bool loaded = results.Load(path);
        complete &= loaded;
        if (!loaded)
            Console::Complain(path + L" is no survey report\n");
        for (const SurveyResult& result : results.all)
            Console::Print(result.Describe());
    }
    return complete;
}

bool SurveyHost::SurveyAll()
{
    VAREK_TRACE();
    bool complete = true;
    SurveyResults results;
    for (const std::wstring& path : options.paths) {
        results.all.push_back(SurveyOne(path));
        complete &= !results.all.back().failed;
        Console::Print(results.all.back().Describe());
    }
    Keep(results);
    return complete;
}

/// Returns when the progress of a survey that succeeded has been printed to its end.
SurveyResult SurveyHost::SurveyOne(const std::wstring& path)
{
    SurveyResult result;
    result.path = path;
    const auto printed = std::make_shared<std::promise<void>>();
    try {
        result.report = SurveyFile(path, [path, printed](std::uint32_t percent) {
            PrintProgress(path, percent);
            if (percent == 100)
                printed->set_value();
        });
        printed->get_future().wait();
    } catch (MException& exception) {
        result.failed = true;
        if (const MError* const failure = exception.GetFailure())
            result.failure = *failure;
    }
    return result;
}

void SurveyHost::Keep(const SurveyResults& results)
{
    HostRegistry registry = HostRegistry::Load();
    const SurveyTotals last = registry.lastTotals;
    SurveyTotals totals;
    for (const SurveyResult& result : results.all) {
        totals.files += !result.failed;
        totals.bytes += result.report.bytes;
    }
    registry.lastTotals = totals;
    registry.Save();

    const std::wstring& path = registry.settings.reportFile;
    const bool saved = results.Save(path);
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
