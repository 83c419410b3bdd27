#pragma once

#include "foundation/MString.h"

#include <cstdint>
#include <string>

/// The totals of a run.
struct SurveyTotals {
    unsigned int files;
    std::uint64_t bytes;
};

/// What the host keeps in the registry, under the current user: a setting, and the totals of its
/// last run.
class HostRegistry
{
public:
    /// Where reports go: the setting "ReportFile" of the group "Settings", put there with its
    /// default if it is missing.
    static std::wstring GetReportPath();

    /// Zero before the first run.
    static SurveyTotals GetLastTotals();
    static void SetLastTotals(const SurveyTotals& totals);
};
