#include "viewer/CommandLine.h"

#include "viewer/forms/Terminal.h"
#include "viewer/forms/Utf8.h"

#include <CLI/CLI.hpp>

#include <charconv>

namespace
{

constexpr char purpose[] =
    "Reads dumps of the flight recorder, texts or Windows minidumps, and prints what\n"
    "is in them: first what was going on at the end. Several dumps are merged by the\n"
    "wall clock.\n";

constexpr char remarks[] =
    "\nTimes are seconds of the dump, where the oldest record is 0, or what the clock\n"
    "on the wall showed: \"10:33:33.129\", also behind a date, \"2026-11-21 10:33\".\n"
    "Filters hold together and apply to all output. A scope stays whole when any of\n"
    "it lies between --from and --to.\n\n"
    "Exit codes: 0 done, 1 a dump cannot be read or the output not be written, 2 the\n"
    "command line is wrong.\n";

/// What CLI11 fills, before it is understood.
struct Words {
    std::vector<std::string> files;
    std::string trace, page, object, from, to;
    std::string by = "function";
    bool tree = false, list = false, stats = false, diff = false;
};

void AddOutputs(CLI::App& app, Words& words, CommandLine& line)
{
    app.add_flag("--tree", words.tree, "the scopes of each thread, nested");
    app.add_flag("--list", words.list, "all records in order of time, one line each");
    app.add_flag("--stats", words.stats, "how often and how long, by function");
    app.add_flag("--diff", words.diff, "what differs between two dumps, the earlier first");
    app.add_option("--html", words.page, "write a page with the timeline; - is standard output")
        ->type_name("FILE");
    app.add_option("--trace", words.trace, "write trace events, as Perfetto opens; likewise")
        ->type_name("FILE");
    app.add_option("--by", words.by, "statistics by function, class or object")
        ->type_name("WHAT")
        ->check(CLI::IsMember({"function", "class", "object"}));
    app.add_option("--sort", line.sort, "statistics by a column, or by name")
        ->type_name("COLUMN")
        ->check(CLI::IsMember(ScopeStatistics::SortColumns()));
    app.add_option("--format", line.format, "statistics as text, csv or json")
        ->type_name("FORM")
        ->check(CLI::IsMember({"text", "csv", "json"}));
    line.width = Terminal::Width();
    app.add_option("--width", line.width, "columns of lists and statistics; 0: whole names")
        ->type_name("COLUMNS");
}

void AddFilters(CLI::App& app, Words& words, CommandLine& line)
{
    app.add_option("--dump", line.dumpNumber, "which of several dumps in one file, from 1")
        ->type_name("NUMBER");
    app.add_option("--thread", line.filter.thread, "only the thread with this id or name")
        ->type_name("THREAD");
    app.add_option("--class", line.filter.className, "only the class of this name")
        ->type_name("CLASS");
    app.add_option("--object", words.object, "only the object with this address or name")
        ->type_name("OBJECT");
    app.add_option("--from", words.from, "only what happened from this time on")->type_name("TIME");
    app.add_option("--to", words.to, "only what happened up to this time")->type_name("TIME");
}

std::optional<std::uint64_t> AddressIn(std::string_view text)
{
    const std::string_view prefix = text.substr(0, 2);
    if (prefix == "0x" || prefix == "0X")
        text.remove_prefix(2);
    std::uint64_t address = 0;
    const auto [behind, error] =
        std::from_chars(text.data(), text.data() + text.size(), address, 16);
    if (error != std::errc() || behind != text.data() + text.size())
        return std::nullopt;
    return address;
}

std::optional<Moment> MomentOf(const std::string& option, const std::string& text)
{
    if (text.empty())
        return std::nullopt;
    const std::optional<Moment> moment = Moment::Parse(text);
    if (!moment)
        throw UsageError(option + " takes seconds or a wall clock, not \"" + text + "\"");
    return moment;
}

CommandLine::Show ShowOf(const Words& words)
{
    using Show = CommandLine::Show;
    const bool printsFile = words.trace == "-" || words.page == "-";
    if (words.tree + words.list + words.stats + words.diff + (words.trace == "-") +
            (words.page == "-") >
        1)
        throw UsageError("standard output takes one text at a time");
    if (words.diff && words.files.size() != 2)
        throw UsageError("--diff takes two dumps");
    if (words.tree || words.list)
        return words.tree ? Show::Tree : Show::List;
    if (words.stats || words.diff)
        return words.stats ? Show::Stats : Show::Diff;
    return printsFile || !words.trace.empty() || !words.page.empty() ? Show::Nothing
                                                                     : Show::Summary;
}

void Understand(const Words& words, CommandLine& line)
{
    line.show = ShowOf(words);
    line.trace = std::filesystem::u8path(words.trace);
    line.page = std::filesystem::u8path(words.page);
    if (!words.files.empty())
        line.dumps.clear();
    for (const std::string& file : words.files)
        line.dumps.push_back(std::filesystem::u8path(file));
    line.by = words.by == "class"    ? ScopeStatistics::By::Class
              : words.by == "object" ? ScopeStatistics::By::Object
                                     : ScopeStatistics::By::Function;
    line.filter.object = words.object;
    line.filter.address = AddressIn(words.object);
    line.from = MomentOf("--from", words.from);
    line.to = MomentOf("--to", words.to);
}

} // namespace

CommandLine CommandLine::Parse(const std::vector<std::filesystem::path>& arguments)
{
    CommandLine line;
    Words words;
    CLI::App app(purpose, "varek-log");
    app.get_formatter()->column_width(22);
    app.footer(remarks);
    app.set_help_flag("--help", "this text");
    app.set_version_flag("--version", "varek-log " VAREK_VERSION, "the version");
    app.add_option("FILE", words.files, "dumps; - or none is standard input")->type_name("");
    AddOutputs(app, words, line);
    AddFilters(app, words, line);

    std::vector<std::string> backward; // which is how CLI11 takes them
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
        backward.push_back(argument->u8string());
    try {
        app.parse(backward);
        Understand(words, line);
    } catch (const CLI::CallForHelp&) {
        line.answer = app.help();
    } catch (const CLI::CallForVersion& version) {
        line.answer = std::string(version.what()) + "\n";
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    return line;
}

std::string CommandLine::SourceOf(const std::filesystem::path& dump)
{
    return dump == "-" ? "standard input" : Utf8::FromName(dump.filename().u8string());
}

RecordFilter CommandLine::FilterFor(const Dump& dump) const
{
    const bool needsWallClock = (from && from->NeedsWallClock()) || (to && to->NeedsWallClock());
    if (needsWallClock && !dump.start)
        throw UsageError("the dump does not tell the wall clock: --from and --to take seconds");
    RecordFilter wanted = filter;
    if (from)
        wanted.from = from->FirstIn(dump);
    if (to)
        wanted.to = to->LastIn(dump);
    return wanted;
}
