#pragma once

#include "examples/survey/module/SurveyReport.h"
#include "foundation/MError.h"

#include <string>
#include <vector>

namespace varek
{
class Filing;
}

/// What came of one file: its report, or the failure.
struct SurveyResult {
    /// For people.
    std::wstring Describe() const;

    std::wstring path;
    bool failed = false;
    SurveyReport report;
    MError failure;
};

/// The results of a run, as they are kept in a file.
struct SurveyResults {
    /// False when the file cannot be written.
    bool Save(const std::wstring& path) const;

    /// False when the file cannot be read or is no report.
    bool Load(const std::wstring& path);

    std::vector<SurveyResult> all;
};
