#include "examples/survey/host/Options.h"

bool Options::Parse(int argc, const wchar_t* const* argv, Options& options, std::wstring& unknown)
{
    bool pathsOnly = false;
    for (int i = 1; i < argc; ++i) {
        const std::wstring argument = argv[i];
        if (pathsOnly || argument.compare(0, 2, L"--") != 0) {
            options.paths.push_back(argument);
        } else if (argument == L"--") {
            pathsOnly = true;
        } else if (argument == L"--help") {
            options.help = true;
        } else if (argument == L"--dump") {
            options.dump = true;
        } else if (argument == L"--report") {
            options.report = true;
        } else if (argument == L"--fatal") {
            options.fatal = true;
        } else if (argument == L"--crash") {
            options.crash = true;
        } else {
            unknown = argument;
            return false;
        }
    }
    return true;
}
