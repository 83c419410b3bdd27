#pragma once

#include <string>
#include <vector>

/// What the host's command line asks for.
struct Options {
    std::vector<std::wstring> paths;
    bool help = false;
    bool dump = false;
    bool report = false;
    bool fatal = false;
    bool crash = false;

    /// Whether there is anything to do.
    bool AskForWork() const { return !paths.empty() || report || fatal || crash; }

    /// False, with the argument in `unknown`, when one is not understood.
    static bool Parse(int argc, const wchar_t* const* argv, Options& options,
                      std::wstring& unknown);
};
