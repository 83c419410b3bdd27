#pragma once

#include "examples/survey/module/Survey.h"
#include "varek/Trace.h"

/// Surveys one file, on the engine thread.
class SurveyCommand
{
    VAREK_TRACED_CLASS(SurveyCommand);

public:
    /// Both must stay.
    SurveyCommand(const std::wstring& path, const SurveyProgress& onProgress);

    SurveyReport Execute();

private:
    void ReportProgress(std::uint32_t percent);

    const std::wstring& path;
    const SurveyProgress& onProgress;
    std::uint32_t reportedPercent;
};
