#include "examples/survey/module/SurveyCommand.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "examples/survey/module/Crc32.h"
#include "examples/survey/module/FileReader.h"
#include "examples/survey/module/SurveyProgressEvent.h"
#include "examples/survey/module/TextCounter.h"
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
    while (file.ReadNext()) {
        counter.Add(file.GetData(), file.GetSize());
        crc.Add(file.GetData(), file.GetSize());
        ReportProgress(file);
    }
    report = counter.GetReport();
    report.crc32 = crc.GetValue();
}

/// One event a quarter of the file: the engine thread goes on while it is delivered.
void SurveyCommand::ReportProgress(const FileReader& file)
{
    const std::uint32_t percent = file.GetPercent() / percentStep * percentStep;
    if (!listener || percent <= reportedPercent)
        return;
    reportedPercent = percent;
    std::unique_ptr<SurveyProgressEvent> event(new SurveyProgressEvent(listener, survey, percent));
    ModuleCommandProcessor::GetInstance().GetDesyncScheduler()->ScheduleDesyncEvent(event.get());
    event.release();
}
