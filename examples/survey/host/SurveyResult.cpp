#include "examples/survey/host/SurveyResult.h"

#include "filers/IInFilerTagged.h"
#include "filers/IOutFilerTagged.h"
#include "filers/MFilerTaggedPair.h"

#include <cwchar>
#include <iomanip>
#include <sstream>

namespace
{

const wchar_t surveyTag[] = L"Survey";
const wchar_t failureTag[] = L"Failure";
const wchar_t xmlTag[] = L"Xml";

// Filers have no 64-bit numbers, so counts are filed as texts.
bool WriteCount(IOutFilerTagged& filer, const wchar_t* tag, std::uint64_t count)
{
    return filer.WriteString(tag, std::to_wstring(count).c_str());
}

bool ReadCount(IInFilerTagged& filer, const wchar_t* tag, std::uint64_t& count)
{
    MString text;
    const bool read = filer.ReadString(tag, text, L"0");
    count = std::wcstoull(text.c_str(), nullptr, 10);
    return read;
}

bool WriteReport(IOutFilerTagged& filer, const SurveyReport& report)
{
    return WriteCount(filer, L"Bytes", report.bytes) && WriteCount(filer, L"Lines", report.lines) &&
           WriteCount(filer, L"Words", report.words) &&
           WriteCount(filer, L"LongestLine", report.longestLine) &&
           filer.WriteUInt32(L"Crc32", report.crc32);
}

bool ReadReport(IInFilerTagged& filer, SurveyReport& report)
{
    return ReadCount(filer, L"Bytes", report.bytes) && ReadCount(filer, L"Lines", report.lines) &&
           ReadCount(filer, L"Words", report.words) &&
           ReadCount(filer, L"LongestLine", report.longestLine) &&
           filer.ReadUInt32(L"Crc32", &report.crc32, 0);
}

bool WriteXml(IOutFilerTagged& filer, const XmlReport& xml)
{
    return !xml.isXml ||
           (filer.BeginGroup(xmlTag) && filer.WriteBool(L"WellFormed", xml.wellFormed) &&
            filer.WriteString(L"Finding", xml.finding.c_str()) &&
            WriteCount(filer, L"Elements", xml.elements) &&
            WriteCount(filer, L"Depth", xml.depth) && filer.EndGroup());
}

bool ReadXml(IInFilerTagged& filer, XmlReport& xml)
{
    xml.isXml = filer.BeginGroup(xmlTag);
    MString finding;
    const bool read = !xml.isXml || (filer.ReadBool(L"WellFormed", &xml.wellFormed, false) &&
                                     filer.ReadString(L"Finding", finding, MString()) &&
                                     ReadCount(filer, L"Elements", xml.elements) &&
                                     ReadCount(filer, L"Depth", xml.depth) && filer.EndGroup());
    xml.finding = finding.c_str();
    return read;
}

void Describe(std::wostream& text, const SurveyReport& report)
{
    text << L"\n  bytes " << report.bytes << L", lines " << report.lines << L", words "
         << report.words << L", longest line " << report.longestLine << L", crc32 " << std::hex
         << std::setfill(L'0') << std::setw(8) << report.crc32 << std::dec;
    if (report.xml.isXml)
        text << L"\n  xml, " << (report.xml.wellFormed ? L"well-formed" : report.xml.finding)
             << L"; elements " << report.xml.elements << L", depth " << report.xml.depth;
}

void Describe(std::wostream& text, const MError& failure)
{
    text << L"\n  failed: " << failure.GetCode().c_str();
    for (const MError::Parameters::value_type& parameter : failure.GetParameters())
        text << L"\n    " << parameter.first.c_str() << L" = " << parameter.second.c_str();
}

} // namespace

bool SurveyResult::Write(IOutFilerTagged& filer) const
{
    MFilerTaggedPair out(nullptr, &filer);
    return filer.BeginGroup(surveyTag) && filer.WriteString(L"Path", path.c_str()) &&
           filer.WriteBool(L"Failed", failed) &&
           (failed ? failure.Write(out, failureTag)
                   : WriteReport(filer, report) && WriteXml(filer, report.xml)) &&
           filer.EndGroup();
}

bool SurveyResult::Read(IInFilerTagged& filer)
{
    MFilerTaggedPair in(&filer, nullptr);
    MString filedPath;
    const bool begun = filer.BeginGroup(surveyTag) &&
                       filer.ReadString(L"Path", filedPath, MString()) &&
                       filer.ReadBool(L"Failed", &failed, false);
    path = filedPath.c_str();
    return begun &&
           (failed ? failure.Read(in, failureTag, failure)
                   : ReadReport(filer, report) && ReadXml(filer, report.xml)) &&
           filer.EndGroup();
}

std::wstring SurveyResult::Describe() const
{
    std::wostringstream text;
    text << path;
    if (failed)
        ::Describe(text, failure);
    else
        ::Describe(text, report);
    text << L"\n";
    return text.str();
}
