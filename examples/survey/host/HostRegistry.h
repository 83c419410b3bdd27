#pragma once

#include <cstdint>
#include <string>

/// The totals of a run.
struct SurveyTotals {
    unsigned int files = 0;
    std::uint64_t bytes = 0;
};

/// What the host keeps in the registry, under the current user: a setting, and the totals of its
/// last run.
struct HostRegistry {
    struct Settings {
        std::wstring reportFile; ///< where reports go
    };

    /// What is missing has its default.
    static HostRegistry Load();
    void Save() const;

    Settings settings;
    SurveyTotals lastTotals;
};
