#pragma once

#include "examples/survey/host/ProgressPrinter.h"

#include <cstdint>
#include <string>
#include <vector>

class MError;
struct Options;
struct SurveyReport;

/// A host from load to shutdown: joins its flow logger to the module's, registers its callbacks,
/// has files surveyed, and shows what came of it.
class SurveyHost
{
public:
    static const wchar_t className[];

    explicit SurveyHost(const Options& options);

    /// Does what the options ask for. True when every file could be surveyed.
    bool Run();

private:
    void Connect();
    bool SurveyAll();
    bool SurveyOne(std::uint32_t survey);
    void ShowReport(const std::wstring& path, const SurveyReport& report);
    void ShowFailure(const std::wstring& path, const MError& failure);
    void PrintDump();

    const Options& options;
    ProgressPrinter progress;
};
