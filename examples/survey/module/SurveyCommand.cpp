#include "examples/survey/module/SurveyCommand.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "examples/survey/module/Crc32.h"
#include "examples/survey/module/FileReader.h"
#include "examples/survey/module/SurveyProgressEvent.h"
#include "examples/survey/module/TextCounter.h"
#include "examples/survey/module/XmlSurvey.h"
#include "module/ModuleCommandProcessor.h"

#include <memory>

const wchar_t SurveyCommand::className[] = L"SurveyCommand";

namespace
{

const ClassName registered(SurveyCommand::className);

const std::uint32_t percentStep = 25;

} // namespace

SurveyCommand::SurveyCommand(const MExceptionSlot& slot, const std::wstring& path,
                             std::uint32_t survey, ISurveyListener* listener, SurveyReport& report)
    : MCommandSynchronous(slot), path(path), survey(survey), listener(listener), report(report),
      reportedPercent(0)
{
}

void SurveyCommand::Execute()
{
    static MFlowLocation location(className, L"Execute");
    MFlowScope scope(location.SetObject(this));

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
    report = counter.GetReport();
    report.crc32 = crc.GetValue();
    report.xml = xml.GetReport();
}

/// One event a quarter of the file: the engine thread goes on while it is delivered.
void SurveyCommand::ReportProgress(std::uint32_t percent)
{
    const std::uint32_t quarter = percent / percentStep * percentStep;
    if (!listener || quarter <= reportedPercent)
        return;
    reportedPercent = quarter;
    std::unique_ptr<SurveyProgressEvent> event(new SurveyProgressEvent(listener, survey, quarter));
    ModuleCommandProcessor::GetInstance().GetDesyncScheduler()->ScheduleDesyncEvent(event.get());
    event.release();
}
