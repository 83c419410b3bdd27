#include "examples/survey/host/HostRegistry.h"

#include "varek/Filing.h"

namespace
{

const wchar_t area[] = L"Survey";

} // namespace

void Describe(varek::Filing& filing, HostRegistry::Settings& settings)
{
    filing(L"ReportFile", settings.reportFile, L"survey-report.xml");
}

void Describe(varek::Filing& filing, SurveyTotals& totals)
{
    filing(L"Files", totals.files, 0);
    filing(L"Bytes", totals.bytes, 0);
}

void Describe(varek::Filing& filing, HostRegistry& registry)
{
    filing(L"Settings", registry.settings);
    filing(L"LastTotals", registry.lastTotals);
}

HostRegistry HostRegistry::Load()
{
    HostRegistry registry;
    varek::LoadRegistry(area, registry);
    return registry;
}

void HostRegistry::Save() const
{
    varek::SaveRegistry(area, *this);
}
