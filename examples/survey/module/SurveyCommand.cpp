#include "examples/survey/module/SurveyCommand.h"

#include "examples/survey/module/Crc32.h"
#include "examples/survey/module/FileReader.h"
#include "examples/survey/module/TextCounter.h"
#include "examples/survey/module/XmlSurvey.h"
#include "varek/Post.h"

namespace
{

const std::uint32_t percentStep = 25;

} // namespace

SurveyCommand::SurveyCommand(const std::wstring& path, const SurveyProgress& onProgress)
    : path(path), onProgress(onProgress), reportedPercent(0)
{
}

SurveyReport SurveyCommand::Execute()
{
    VAREK_TRACE();
    FileReader file(path);
    TextCounter counter;
    Crc32 crc;
    XmlSurvey xml;
    while (file.ReadNext()) {
        counter.Add(file.GetData(), file.GetSize());
        crc.Add(file.GetData(), file.GetSize());
        xml.Add(file.GetData(), file.GetSize());
        ReportProgress(file.GetPercent());
    }
    ReportProgress(100);
    SurveyReport report = counter.GetReport();
    report.crc32 = crc.GetValue();
    report.xml = xml.GetReport();
    return report;
}

/// One event a quarter of the file: the engine thread goes on while it is delivered.
void SurveyCommand::ReportProgress(std::uint32_t percent)
{
    const std::uint32_t quarter = percent / percentStep * percentStep;
    if (quarter <= reportedPercent)
        return;
    VAREK_TRACE(quarter);
    reportedPercent = quarter;
    varek::Post([onProgress = onProgress, quarter] { onProgress(quarter); });
}
