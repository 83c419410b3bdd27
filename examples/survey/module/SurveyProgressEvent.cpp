#include "examples/survey/module/SurveyProgressEvent.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "examples/survey/module/ISurveyListener.h"

namespace
{

const wchar_t className[] = L"SurveyProgressEvent";
const ClassName registered(className);

} // namespace

SurveyProgressEvent::SurveyProgressEvent(ISurveyListener* listener, std::uint32_t survey,
                                         std::uint32_t percent)
    : listener(listener), survey(survey), percent(percent)
{
}

void SurveyProgressEvent::Fire()
{
    static MFlowLocation location(className, L"Fire");
    location.SetObject(this).SetLine(__LINE__).LogTimingPoint(survey, percent);
    listener->OnProgress(survey, percent);
}
