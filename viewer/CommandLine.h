#pragma once

#include "viewer/model/records/Moment.h"
#include "viewer/model/records/RecordFilter.h"
#include "viewer/model/statistics/ScopeStatistics.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

/// A command line that cannot be obeyed, told in a few words.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What the user asks for. Arguments are paths, because that is what the system can always pass.
struct CommandLine {
    enum class Show { Summary, Tree, List, Stats, Diff, Nothing };

    std::vector<std::filesystem::path> dumps = {"-"}; ///< "-" is standard input
    std::size_t dumpNumber = 0;  ///< among those in one file, from 1; 0 for the usual choice
    std::filesystem::path trace; ///< where trace events go: empty for nowhere, "-" for output
    std::filesystem::path page;  ///< where the page with the timeline goes, likewise
    Show show = Show::Summary;   ///< what is printed

    ScopeStatistics::By by = ScopeStatistics::By::Function;
    std::string sort = "self";   ///< column of the statistics
    std::string format = "text"; ///< of the statistics: text, csv, json
    std::size_t width; ///< that lists and statistics keep to by shortening names; 0 if not

    std::string answer; ///< to be printed, and nothing else done: the help, the version

    /// Raises `UsageError`.
    static CommandLine Parse(const std::vector<std::filesystem::path>& arguments);

    /// A dump's file as it is called in what is made of it.
    static std::string SourceOf(const std::filesystem::path& dump);

    /// What of `dump` is wanted. Raises `UsageError` where wall clocks are asked for and unknown.
    RecordFilter FilterFor(const Dump& dump) const;

    RecordFilter filter; ///< but for its times
    std::optional<Moment> from;
    std::optional<Moment> to;
};
