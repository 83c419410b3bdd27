#include "tools/varek-log/CommandLine.h"

#include <iostream>

namespace
{

enum ExitCode { Done = 0, Failed = 1, Usage = 2 };

ExitCode Run(const CommandLine& line)
{
    if (line.showHelp)
        std::cout << CommandLine::help;
    else if (line.showVersion)
        std::cout << "varek-log " VAREK_VERSION "\n";
    return Done;
}

ExitCode Run(const std::vector<std::filesystem::path>& arguments)
{
    try {
        return Run(CommandLine::Parse(arguments));
    } catch (const UsageError& error) {
        std::cerr << "varek-log: " << error.what() << "\n" << CommandLine::help;
        return Usage;
    } catch (const std::exception& error) {
        std::cerr << "varek-log: " << error.what() << "\n";
        return Failed;
    }
}

} // namespace

#ifdef _WIN32
int wmain(int argc, wchar_t** argv)
#else
int main(int argc, char** argv)
#endif
{
    return Run(std::vector<std::filesystem::path>(argv + 1, argv + argc));
}
