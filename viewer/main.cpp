#include "viewer/CommandLine.h"
#include "viewer/forms/Utf8.h"
#include "viewer/model/scopes/Timelines.h"
#include "viewer/reading/text/DumpReader.h"
#include "viewer/reading/TextFile.h"
#include "viewer/showing/page/TimelinePage.h"
#include "viewer/showing/text/ScopeTree.h"
#include "viewer/showing/text/Summary.h"
#include "viewer/showing/trace/TraceEvents.h"

#include <iostream>

namespace
{

enum ExitCode { Done = 0, Failed = 1, Usage = 2 };

void Print(std::string_view text)
{
    TextFile::Write("-", text);
}

Dump ReadDump(const CommandLine& line)
{
    const std::string text = Utf8::FromFile(TextFile::Read(line.dump));
    try {
        return DumpReader::Read(text);
    } catch (const NotADump& error) {
        throw std::runtime_error(line.Source() + ": " + error.what());
    }
}

void ShowFindings(const Findings& findings)
{
    for (const std::string& sentence : findings.Sentences())
        std::cerr << "varek-log: " << sentence << "\n";
}

void WriteTrace(const CommandLine& line, const std::string& trace)
{
    if (!line.trace.empty())
        TextFile::Write(line.trace, trace);
    if (!line.page.empty())
        TextFile::Write(line.page, TimelinePage::Compose(trace));
}

void KeepDump(const CommandLine& line)
{
    for (const std::filesystem::path& output : {line.trace, line.page}) {
        std::error_code notBoth;
        if (std::filesystem::equivalent(output, line.dump, notBoth))
            throw std::runtime_error(output.u8string() + ": this is the dump itself");
    }
}

void ShowDump(const CommandLine& line)
{
    KeepDump(line);
    Dump dump = ReadDump(line);
    std::vector<Timeline> timelines = Timelines::Of(dump);
    Timelines::Keep(line.filter, dump.names, timelines);
    if (timelines.empty() && !dump.records.empty())
        std::cerr << "varek-log: nothing passes the filters\n";

    if (line.showTree)
        Print(ScopeTree::Compose(dump, timelines));
    if (!line.trace.empty() || !line.page.empty())
        WriteTrace(line, TraceEvents::Compose(dump, timelines, line.Source()));
    if (line.ShowSummary())
        Print(Summary::Compose(dump, line.filter));
    else
        ShowFindings(dump.findings);
}

void Obey(const CommandLine& line)
{
    if (line.showHelp)
        Print(CommandLine::help);
    else if (line.showVersion)
        Print("varek-log " VAREK_VERSION "\n");
    else
        ShowDump(line);
}

ExitCode Run(const std::vector<std::filesystem::path>& arguments)
{
    try {
        Obey(CommandLine::Parse(arguments));
        return Done;
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
