#include "examples/survey/host/SurveyResult.h"

#include "varek/Filing.h"
#include "varek/Text.h"

#include <iomanip>
#include <sstream>

namespace
{

const wchar_t rootTag[] = L"SurveyReport";
const unsigned version = 2;

void Show(std::wostream& text, const SurveyReport& report)
{
    text << L"\n  bytes " << report.bytes << L", lines " << report.lines << L", words "
         << report.words << L", longest line " << report.longestLine << L", crc32 " << std::hex
         << std::setfill(L'0') << std::setw(8) << report.crc32 << std::dec;
    if (report.xml.isXml)
        text << L"\n  xml, " << (report.xml.wellFormed ? L"well-formed" : report.xml.finding)
             << L"; elements " << report.xml.elements << L", depth " << report.xml.depth;
}

void Show(std::wostream& text, const MError& failure)
{
    text << L"\n  failed: " << failure.GetCode();
    for (const MError::Parameters::value_type& parameter : failure.GetParameters())
        text << L"\n    " << parameter.first << L" = " << parameter.second;
}

} // namespace

void Describe(varek::Filing& filing, XmlReport& xml)
{
    filing(L"IsXml", xml.isXml);
    filing(L"WellFormed", xml.wellFormed);
    filing(L"Finding", xml.finding);
    filing(L"Elements", xml.elements);
    filing(L"Depth", xml.depth);
}

void Describe(varek::Filing& filing, SurveyReport& report)
{
    filing(L"Bytes", report.bytes);
    filing(L"Lines", report.lines);
    filing(L"Words", report.words);
    filing(L"LongestLine", report.longestLine);
    filing(L"Crc32", report.crc32);
    filing(L"Xml", report.xml);
}

void Describe(varek::Filing& filing, SurveyResult& result)
{
    filing(L"Path", result.path);
    filing(L"Failed", result.failed);
    if (result.failed)
        filing(L"Failure", result.failure);
    else
        filing(L"Report", result.report);
}

void Describe(varek::Filing& filing, SurveyResults& results)
{
    filing.Version(version);
    filing(L"Surveys", results.all);
}

bool SurveyResults::Save(const std::wstring& path) const
{
    try {
        varek::SaveXml(path, *this, rootTag);
        return true;
    } catch (MException&) {
        return false;
    }
}

bool SurveyResults::Load(const std::wstring& path)
{
    try {
        return varek::LoadXml(path, *this, rootTag).IsComplete();
    } catch (MException&) {
        return false;
    }
}

std::wstring SurveyResult::Describe() const
{
    std::wostringstream text;
    text << path;
    if (failed)
        Show(text, failure);
    else
        Show(text, report);
    text << L"\n";
    return text.str();
}
