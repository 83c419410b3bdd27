#pragma once

#include "examples/survey/module/SurveyReport.h"
#include "foundation/MError.h"

#include <string>

class IInFilerTagged;
class IOutFilerTagged;

/// What came of one file: its report, or the failure.
struct SurveyResult {
    std::wstring path;
    bool failed = false;
    SurveyReport report = {};
    MError failure;

    /// Files the result as a group, or reads the next one. False when that fails; at the end of
    /// the results, too.
    bool Write(IOutFilerTagged& filer) const;
    bool Read(IInFilerTagged& filer);

    /// For people.
    std::wstring Describe() const;
};
