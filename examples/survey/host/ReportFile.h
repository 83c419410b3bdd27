#pragma once

#include "examples/survey/host/SurveyResult.h"

#include <string>
#include <vector>

/// The results of a run, kept as a filed XML document in a UTF-8 file.
class ReportFile
{
public:
    explicit ReportFile(const std::wstring& path);

    /// False when the file cannot be written.
    bool Save(const std::vector<SurveyResult>& results) const;

    /// False when the file cannot be read or is no report.
    bool Load(std::vector<SurveyResult>& results) const;

private:
    std::wstring path;
};
