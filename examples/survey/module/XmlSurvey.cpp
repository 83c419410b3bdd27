#include "examples/survey/module/XmlSurvey.h"

#include "examples/survey/module/TextDecoder.h"
#include "xml/MXmlMarkup.h"

#include <algorithm>

namespace
{

// What a document is held in memory for; beyond it a file counts as text only.
const std::size_t sizeLimit = 0x20000000;

// Byte order marks and blanks, in any encoding.
const std::string ignorable("\xEF\xBB\xBF\xFE\xFF\0 \t\r\n", 10);

void CountElements(MXmlMarkup& document, XmlReport& report)
{
    std::uint64_t depth = 0;
    do {
        while (document.FindElement()) {
            ++report.elements;
            report.depth = std::max(report.depth, ++depth);
            document.EnterElement();
        }
        --depth;
    } while (document.LeaveElement());
}

} // namespace

void XmlSurvey::Add(const char* data, std::size_t size)
{
    if (verdict == Verdict::Other)
        return;
    const std::string piece(data, size);
    bytes += piece;
    const std::size_t first = piece.find_first_not_of(ignorable);
    if (verdict == Verdict::Unknown && first != std::string::npos)
        verdict = piece[first] == '<' ? Verdict::Xml : Verdict::Other;
    if (bytes.size() > sizeLimit)
        verdict = Verdict::Other;
    if (verdict == Verdict::Other)
        bytes = std::string();
}

XmlReport XmlSurvey::GetReport() const
{
    XmlReport report;
    report.isXml = verdict == Verdict::Xml;
    if (report.isXml) {
        MXmlMarkup document;
        report.wellFormed = document.LoadText(DecodeText(bytes).c_str()) != 0;
        report.finding = document.GetErrorText();
        CountElements(document, report);
    }
    return report;
}
