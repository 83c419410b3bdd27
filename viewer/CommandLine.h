#pragma once

#include "viewer/model/records/RecordFilter.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

/// A command line that cannot be obeyed, told in a few words.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What the user asks for. Arguments are paths, because that is what the system can always pass.
struct CommandLine {
    static const char help[];

    std::filesystem::path dump = "-"; ///< "-" is standard input
    std::filesystem::path trace;      ///< where trace events go: empty for nowhere, "-" for output
    std::filesystem::path page;       ///< where the page with the timeline goes, likewise
    RecordFilter filter;
    bool showTree = false;
    bool showHelp = false;
    bool showVersion = false;

    /// Raises `UsageError`.
    static CommandLine Parse(const std::vector<std::filesystem::path>& arguments);

    /// The dump as it is called in what is made of it.
    std::string Source() const
    {
        return dump == "-" ? "standard input" : dump.filename().u8string();
    }

    /// Whether the summary is what is left to print.
    bool ShowSummary() const { return !showTree && trace.empty() && page.empty(); }
};
