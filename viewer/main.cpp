#include "viewer/CommandLine.h"
#include "viewer/model/Merging.h"
#include "viewer/reading/DumpFile.h"
#include "viewer/reading/TextFile.h"
#include "viewer/showing/data/StatisticsData.h"
#include "viewer/showing/page/TimelinePage.h"
#include "viewer/showing/text/DiffReport.h"
#include "viewer/showing/text/RecordList.h"
#include "viewer/showing/text/ScopeTree.h"
#include "viewer/showing/text/StatisticsTable.h"
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

Dump ReadDump(const std::filesystem::path& file, std::size_t number)
{
    std::string bytes = TextFile::Read(file);
    try {
        return DumpFile::Choose(DumpFile::Read(std::move(bytes)), number);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(CommandLine::SourceOf(file) + ": " + error.what());
    }
}

Recording ReadRecording(const CommandLine& line, const std::filesystem::path& file)
{
    Recording recording(ReadDump(file, line.dumpNumber), CommandLine::SourceOf(file));
    recording.Keep(line.FilterFor(recording.dump));
    return recording;
}

/// Several are put on one axis before the filters are asked, whose times are on it.
Recordings ReadAll(const CommandLine& line)
{
    std::vector<Dump> dumps;
    std::vector<std::string> sources;
    for (const std::filesystem::path& file : line.dumps) {
        dumps.push_back(ReadDump(file, line.dumpNumber));
        sources.push_back(CommandLine::SourceOf(file));
    }
    Recordings recordings = Merging::Merge(std::move(dumps), sources);
    for (Recording& recording : recordings)
        recording.Keep(line.FilterFor(recording.dump));
    return recordings;
}

void ShowFindings(const Recordings& recordings)
{
    for (const Recording& recording : recordings) {
        for (const std::string& sentence : recording.dump.findings.Sentences())
            std::cerr << "varek-log: " << recording.label << sentence << "\n";
    }
}

void WriteTrace(const CommandLine& line, const Recordings& recordings)
{
    if (line.trace.empty() && line.page.empty())
        return;
    const std::string trace = TraceEvents::Compose(recordings);
    if (!line.trace.empty())
        TextFile::Write(line.trace, trace);
    if (!line.page.empty())
        TextFile::Write(line.page, TimelinePage::Compose(trace));
}

std::string Statistics(const CommandLine& line, const Recordings& recordings)
{
    std::vector<ScopeStatistics::Row> rows = ScopeStatistics::Of(recordings, line.by);
    ScopeStatistics::Sort(rows, line.sort);
    return line.format == "csv"    ? StatisticsData::ComposeCsv(rows)
           : line.format == "json" ? StatisticsData::ComposeJson(rows)
                                   : StatisticsTable::Compose(rows, line.width);
}

std::string TextOf(const CommandLine& line, const Recordings& recordings)
{
    using Show = CommandLine::Show;
    switch (line.show) {
    case Show::Tree:
        return ScopeTree::Compose(recordings);
    case Show::List:
        return RecordList::Compose(recordings, line.width);
    case Show::Stats:
        return Statistics(line, recordings);
    default:
        return line.show == Show::Summary ? Summary::Compose(recordings) : "";
    }
}

void KeepDumps(const CommandLine& line)
{
    for (const std::filesystem::path& output : {line.trace, line.page}) {
        for (const std::filesystem::path& dump : line.dumps) {
            std::error_code notBoth;
            if (std::filesystem::equivalent(output, dump, notBoth))
                throw std::runtime_error(output.u8string() + ": this is the dump itself");
        }
    }
}

void ShowDumps(const CommandLine& line)
{
    KeepDumps(line);
    const Recordings recordings = ReadAll(line);
    bool nothingPasses = true;
    for (const Recording& recording : recordings)
        nothingPasses &= recording.timelines.empty() && !recording.dump.records.empty();
    if (nothingPasses)
        std::cerr << "varek-log: nothing passes the filters\n";

    WriteTrace(line, recordings);
    Print(TextOf(line, recordings));
    if (line.show != CommandLine::Show::Summary)
        ShowFindings(recordings);
}

void ShowDifference(const CommandLine& line)
{
    Recordings both[2];
    for (std::size_t i = 0; i < 2; ++i)
        both[i].push_back(ReadRecording(line, line.dumps[i]));
    Print(DiffReport::Compose(both[0], both[1]));
    for (const Recordings& recordings : both)
        ShowFindings(recordings);
}

void Obey(const CommandLine& line)
{
    if (!line.answer.empty())
        Print(line.answer);
    else if (line.show == CommandLine::Show::Diff)
        ShowDifference(line);
    else
        ShowDumps(line);
}

ExitCode Run(const std::vector<std::filesystem::path>& arguments)
{
    try {
        Obey(CommandLine::Parse(arguments));
        return Done;
    } catch (const UsageError& error) {
        std::cerr << "varek-log: " << error.what() << "\nvarek-log --help tells more.\n";
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
