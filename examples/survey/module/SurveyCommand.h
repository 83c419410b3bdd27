#pragma once

#include "engine/MCommandSynchronous.h"
#include "examples/survey/module/SurveyReport.h"

#include <string>

class ISurveyListener;

/// Surveys one file on the engine thread.
class SurveyCommand : public MCommandSynchronous
{
public:
    static const wchar_t className[];

    SurveyCommand(const MExceptionSlot& slot, const std::wstring& path, std::uint32_t survey,
                  ISurveyListener* listener, SurveyReport& report);

private:
    void Execute() override;
    void ReportProgress(std::uint32_t percent);

    std::wstring path;
    std::uint32_t survey;
    ISurveyListener* listener;
    SurveyReport& report;
    std::uint32_t reportedPercent;
};
