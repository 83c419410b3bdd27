#include "examples/survey/host/HostRegistry.h"

#include "filers/IInFilerTaggedRegistry.h"
#include "filers/IOutFilerTaggedRegistry.h"

#include <cwchar>

namespace
{

const wchar_t area[] = L"Survey";
const wchar_t settingsTag[] = L"Settings";
const wchar_t totalsTag[] = L"LastTotals";
const wchar_t reportFileTag[] = L"ReportFile";
const wchar_t filesTag[] = L"Files";
const wchar_t bytesTag[] = L"Bytes";

const wchar_t defaultReportFile[] = L"survey-report.xml";

} // namespace

std::wstring HostRegistry::GetReportPath()
{
    IInFilerTaggedRegistry in(area, false);
    in.BeginGroup(settingsTag);
    MString path;
    if (!in.ReadString(reportFileTag, path, defaultReportFile)) {
        IOutFilerTaggedRegistry out(area);
        out.BeginGroup(settingsTag);
        out.WriteString(reportFileTag, path);
    }
    return path.c_str();
}

SurveyTotals HostRegistry::GetLastTotals()
{
    IInFilerTaggedRegistry in(area, false);
    in.BeginGroup(totalsTag);
    SurveyTotals totals = {};
    in.ReadUInt32(filesTag, &totals.files, 0);
    MString bytes;
    in.ReadString(bytesTag, bytes, L"0");
    totals.bytes = std::wcstoull(bytes.c_str(), nullptr, 10);
    return totals;
}

void HostRegistry::SetLastTotals(const SurveyTotals& totals)
{
    IOutFilerTaggedRegistry out(area);
    out.BeginGroup(totalsTag);
    out.WriteUInt32(filesTag, totals.files);
    out.WriteString(bytesTag, std::to_wstring(totals.bytes).c_str());
}
