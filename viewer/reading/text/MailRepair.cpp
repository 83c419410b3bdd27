#include "viewer/reading/text/MailRepair.h"

#include "viewer/model/records/EventKind.h"

#include <algorithm>
#include <vector>

namespace
{

constexpr std::string_view none;
constexpr std::string_view blanks = " \t";
constexpr std::string_view quotes = " \t>|"; // what stands in front of quoted lines
constexpr std::string_view numberLetters = "0123456789-., \t";

std::string_view TrimmedEnd(std::string_view line)
{
    return line.substr(0, line.find_last_not_of(blanks) + 1);
}

std::string_view TrimmedFront(std::string_view line, std::string_view letters)
{
    return line.substr(std::min(line.find_first_not_of(letters), line.size()));
}

/// From where a header begins.
std::string_view Header(std::string_view line)
{
    const std::size_t begin = line.find("%% Reference time: ");
    return begin == std::string_view::npos ? none : line.substr(begin);
}

bool BeginsWithEvent(std::string_view text)
{
    const std::string_view word = text.substr(0, text.find(' '));
    return EventKind::IsName(word) || text.substr(0, 13) == "unknown event";
}

/// From where the readable line of a record begins.
std::string_view Readable(std::string_view line)
{
    for (std::size_t at = 0; (at = line.find("% ", at)) != std::string_view::npos; ++at) {
        if (BeginsWithEvent(line.substr(at + 2)))
            return line.substr(at);
    }
    return none;
}

/// "0.003412, -25": a time with exactly six digits, and something behind it.
bool BeginsWithTime(std::string_view text)
{
    const std::size_t point = text.find_first_not_of("-0123456789");
    constexpr std::size_t fraction = 7;
    return point != std::string_view::npos && point > 0 && text[point] == '.' &&
           text.substr(point).find_first_not_of(".0123456789") == fraction &&
           text[point + fraction] == ',';
}

/// From where the numbers of a record begin: there is nothing else up to the end of the line.
std::string_view Numbers(std::string_view line)
{
    const std::size_t other = line.find_last_not_of(numberLetters);
    std::string_view numbers = line.substr(other == std::string_view::npos ? 0 : other + 1);
    while (!numbers.empty() && !BeginsWithTime(numbers)) {
        const std::size_t blank = std::min(numbers.find_first_of(" \t"), numbers.size());
        numbers = TrimmedFront(numbers.substr(blank), blanks);
    }
    return numbers;
}

/// "    0.003412, -25, 2" of numbers with blanks here and there or nowhere.
std::string NumbersAsWritten(std::string_view item)
{
    std::string text = "    ";
    for (const char letter : item) {
        if (letter == ',')
            text += ", ";
        else if (letter != ' ' && letter != '\t')
            text += letter;
    }
    return text;
}

/// Puts lines together that belong together.
class Repair
{
public:
    explicit Repair(std::string_view text) : isCut(!text.empty() && text.back() != '\n')
    {
        for (; !text.empty(); text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1)) {
            const std::string_view line = text.substr(0, text.find('\n'));
            lines.push_back(line.substr(0, line.find_last_not_of('\r') + 1));
        }
        MeasureHardWraps();
    }

    std::string Result()
    {
        for (std::size_t at = 0; at < lines.size(); ++at)
            Take(at);
        Flush();
        if (isCut && !result.empty())
            result.pop_back();
        return std::move(result);
    }

private:
    enum class Item { None, Header, Readable, Numbers };

    // Programs that break lines at a width leave many of that very length, and none longer.
    void MeasureHardWraps()
    {
        for (const std::string_view line : lines)
            width = std::max(width, line.size());
        const auto isFull = [&](std::string_view line) { return line.size() == width; };
        if (std::count_if(lines.begin(), lines.end(), isFull) < 3)
            width = std::string_view::npos;
    }

    void Take(std::size_t at)
    {
        const std::string_view line = TrimmedEnd(lines[at]);
        const bool begins = Begin(Item::Header, line, Header(line)) ||
                            Begin(Item::Readable, line, Readable(line)) ||
                            Begin(Item::Numbers, line, Numbers(line));
        if (!begins && !Continue(line, at))
            PassOn(line);
    }

    bool Begin(Item as, std::string_view line, std::string_view begin)
    {
        if (begin.empty())
            return false;
        Flush();
        kind = as;
        item = begin;
        front = line.substr(0, line.size() - begin.size());
        wraps = 0;
        return true;
    }

    bool Continue(std::string_view line, std::size_t at)
    {
        constexpr int mostWraps = 8;
        if (kind == Item::None)
            return false;
        const std::string_view before = lines[at - 1];
        const bool isHard = before.size() == width;
        const std::string_view rest =
            isHard ? WithoutFront(line) : TrimmedFront(WithoutFront(line), quotes);
        const bool isPart = kind == Item::Header || kind == Item::Readable ||
                            (IsUnfinished() && IsAllNumbers(rest));
        if (!isPart || rest.empty() || rest == "%%" || ++wraps > mostWraps)
            return false;
        item += isHard ? before.substr(TrimmedEnd(before).size()) : " ";
        item += rest;
        return true;
    }

    std::string_view WithoutFront(std::string_view line) const
    {
        if (!front.empty() && line.substr(0, front.size()) == front)
            line.remove_prefix(front.size());
        return line;
    }

    bool IsUnfinished() const { return std::count(item.begin(), item.end(), ',') < 7; }

    static bool IsAllNumbers(std::string_view text)
    {
        return text.find_first_not_of(numberLetters) == std::string_view::npos;
    }

    void PassOn(std::string_view line)
    {
        Flush();
        const bool isRule = line.size() >= 2 && line.substr(line.size() - 2) == "%%";
        if (!isRule)
            result.append(line).append("\n");
    }

    void Flush()
    {
        if (kind == Item::Numbers)
            item = NumbersAsWritten(item);
        if (kind != Item::None)
            result.append(item).append("\n");
        kind = Item::None;
    }

    const bool isCut; // the last line has no end
    std::vector<std::string_view> lines;
    std::size_t width = 0;
    std::string result;
    Item kind = Item::None;
    std::string item;  // what has come of it
    std::string front; // what stood before it in its line
    int wraps = 0;
};

} // namespace

std::string MailRepair::Undo(std::string_view text)
{
    return Repair(text).Result();
}
