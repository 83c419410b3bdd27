#pragma once

#include "engine/PlatformEvent.h"
#include "examples/survey/module/ISurveyListener.h"

#include <string>
#include <vector>

/// Prints the progress of surveys as it arrives, on the module's scheduler thread.
class ProgressPrinter : public ISurveyListener
{
public:
    /// The files, by the number of their survey.
    explicit ProgressPrinter(const std::vector<std::wstring>& paths);

    void OnProgress(std::uint32_t survey, std::uint32_t percent) override;

    /// Returns when the last progress of a survey that succeeded has been printed.
    void AwaitCompletion();

private:
    const std::vector<std::wstring>& paths;
    PlatformEvent complete;
};
