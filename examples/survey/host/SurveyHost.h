#pragma once

#include "examples/survey/host/SurveyResult.h"
#include "varek/Trace.h"

#include <cstdint>
#include <string>
#include <vector>

struct Options;

/// A host from load to shutdown: has files surveyed, and shows and keeps what came of it.
class SurveyHost
{
    VAREK_TRACED_CLASS(SurveyHost);

public:
    explicit SurveyHost(const Options& options);

    /// Does what the options ask for. True when every file could be surveyed, or read.
    bool Run();

private:
    bool PrintReports();
    bool SurveyAll();
    SurveyResult SurveyOne(const std::wstring& path);
    void Keep(const SurveyResults& results);
    void PrintDump();

    const Options& options;
};
