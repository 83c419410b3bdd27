#include "viewer/CommandLine.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

const char CommandLine::help[] =
    R"(usage: varek-log [OPTION...] [FILE]

Reads a dump of the flight recorder from FILE, or from standard input when FILE is absent or "-",
and prints a summary of it.

  --tree           print the scopes of each thread instead, with what happened inside
  --trace FILE     write trace events, which Perfetto and chrome://tracing open; "-" is standard
                   output
  --html FILE      write a page with the timeline, for a browser; "-" is standard output
  --thread THREAD  only the thread with this id or name
  --class CLASS    only the class of this name
  --object OBJECT  only the object with this address, in hexadecimal, or name
  --from SECONDS   only what happened from this time on
  --to SECONDS     only what happened up to this time
  --help           this text
  --version        the version

Times are those of the dump, where the oldest record is 0. Filters hold together and apply to all
output. What they leave out goes without its place in the nesting: what it held moves up to the next
scope that stays. A scope stays whole when any of it lies between --from and --to.

Exit codes: 0 done, 1 the dump cannot be read or the output not be written, 2 the command line is
wrong.
)";

namespace
{

/// The arguments that are still to be understood.
class Arguments
{
public:
    explicit Arguments(const std::vector<std::filesystem::path>& arguments)
        : next(arguments.begin()), end(arguments.end())
    {
    }

    bool AtEnd() const { return next == end; }

    std::filesystem::path Take() { return *next++; }

    std::filesystem::path TakeValueOf(const std::string& option)
    {
        if (AtEnd() || next->empty())
            throw UsageError(option + " needs a value");
        return Take();
    }

    std::string TakeTextOf(const std::string& option) { return TakeValueOf(option).u8string(); }

    std::int64_t TakeMicrosecondsOf(const std::string& option)
    {
        const std::string text = TakeTextOf(option);
        char* behind = nullptr;
        const double seconds = std::strtod(text.c_str(), &behind);
        const double mostSeconds = 9e12; // what its microseconds still hold
        if (*behind != '\0' || !(std::abs(seconds) < mostSeconds))
            throw UsageError(option + " takes a number of seconds, not \"" + text + "\"");
        return std::llround(seconds * 1e6);
    }

private:
    std::vector<std::filesystem::path>::const_iterator next;
    const std::vector<std::filesystem::path>::const_iterator end;
};

bool IsOption(const std::string& argument)
{
    return argument.size() > 1 && argument[0] == '-';
}

/// What reads as an address may still be a name.
void SetObject(RecordFilter& filter, const std::string& object)
{
    std::string_view digits = object;
    if (digits.substr(0, 2) == "0x")
        digits.remove_prefix(2);
    std::uint64_t address = 0;
    const char* const end = digits.data() + digits.size();
    const auto [behind, error] = std::from_chars(digits.data(), end, address, 16);
    filter.object = object;
    filter.address.reset();
    if (error == std::errc() && behind == end)
        filter.address = address;
}

void TakeOption(CommandLine& line, const std::string& option, Arguments& arguments)
{
    if (option == "--tree")
        line.showTree = true;
    else if (option == "--trace")
        line.trace = arguments.TakeValueOf(option);
    else if (option == "--html")
        line.page = arguments.TakeValueOf(option);
    else if (option == "--thread")
        line.filter.thread = arguments.TakeTextOf(option);
    else if (option == "--class")
        line.filter.className = arguments.TakeTextOf(option);
    else if (option == "--object")
        SetObject(line.filter, arguments.TakeTextOf(option));
    else if (option == "--from")
        line.filter.from = arguments.TakeMicrosecondsOf(option);
    else if (option == "--to")
        line.filter.to = arguments.TakeMicrosecondsOf(option);
    else if (option == "--help")
        line.showHelp = true;
    else if (option == "--version")
        line.showVersion = true;
    else
        throw UsageError("unknown option " + option);
}

} // namespace

CommandLine CommandLine::Parse(const std::vector<std::filesystem::path>& arguments)
{
    CommandLine line;
    bool hasFile = false;
    for (Arguments rest(arguments); !rest.AtEnd();) {
        const std::filesystem::path argument = rest.Take();
        const std::string text = argument.u8string();
        if (IsOption(text)) {
            TakeOption(line, text, rest);
        } else if (hasFile) {
            throw UsageError("one dump at a time, not also " + text);
        } else {
            line.dump = argument;
            hasFile = true;
        }
    }
    if (line.showTree + (line.trace == "-") + (line.page == "-") > 1)
        throw UsageError("standard output takes one text at a time");
    return line;
}
