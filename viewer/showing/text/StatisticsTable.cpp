#include "viewer/showing/text/StatisticsTable.h"

#include "viewer/forms/TextForms.h"

#include <algorithm>
#include <cstring>

namespace
{

using ScopeStatistics::Row;

struct Column {
    const char* name;
    std::size_t width;
    bool isShort; // stands in the short table
    std::string (*text)(const Row&);
};

/// Nothing where no duration is known.
std::string Duration(const Row& row, std::int64_t duration)
{
    return row.count == row.cut ? "-" : TextForms::Seconds(duration);
}

const Column columns[] = {
    {"Count", 9, true, [](const Row& row) { return std::to_string(row.count); }},
    {"Self", 12, true, [](const Row& row) { return Duration(row, row.self); }},
    {"Total", 12, false, [](const Row& row) { return Duration(row, row.total); }},
    {"Median", 11, true, [](const Row& row) { return Duration(row, row.median); }},
    {"99 %", 11, false, [](const Row& row) { return Duration(row, row.percentile); }},
    {"Slowest", 11, true, [](const Row& row) { return Duration(row, row.slowest); }},
    {"Wait", 11, false,
     [](const Row& row) { return row.handed == 0 ? "" : TextForms::Seconds(row.wait); }},
};

/// The least that a column needs.
std::size_t LeastWidth(const Column& column, const std::vector<Row>& rows)
{
    constexpr std::size_t gap = 2;
    std::size_t width = std::strlen(column.name);
    for (const Row& row : rows)
        width = std::max(width, column.text(row).size());
    return width + gap;
}

template <class TextOf>
std::string Line(const std::vector<Column>& shown, TextOf textOf, const std::string& name)
{
    std::string line;
    for (const Column& column : shown)
        line += TextForms::AlignRight(textOf(column), column.width);
    return line + "  " + name + "\n";
}

std::string Table(const std::vector<Row>& rows, const std::vector<Column>& shown, std::size_t most,
                  std::size_t nameWidth)
{
    std::string text = Line(
        shown, [](const Column& column) { return column.name; }, "Name");
    for (std::size_t i = 0; i < std::min(most, rows.size()); ++i)
        text += Line(
            shown, [&](const Column& column) { return column.text(rows[i]); },
            TextForms::Shorten(rows[i].name, nameWidth));
    return text;
}

} // namespace

std::string StatisticsTable::Compose(const std::vector<Row>& rows, std::size_t width)
{
    constexpr std::size_t leastName = 12;
    constexpr std::size_t anyLength = std::string::npos;
    std::vector<Column> shown(std::begin(columns), std::end(columns));
    if (width == 0)
        return Table(rows, shown, rows.size(), anyLength);
    std::size_t used = 2;
    for (Column& column : shown)
        used += column.width = LeastWidth(column, rows);
    return Table(rows, shown, rows.size(), std::max(leastName, width - std::min(width, used)));
}

std::string StatisticsTable::ComposeShort(const std::vector<Row>& rows, std::size_t most)
{
    std::vector<Column> shown;
    std::copy_if(std::begin(columns), std::end(columns), std::back_inserter(shown),
                 [](const Column& column) { return column.isShort; });
    std::string text = Table(rows, shown, most, std::string::npos);
    if (rows.size() > most)
        text += "      and " + std::to_string(rows.size() - most) + " more; --stats shows all\n";
    return text;
}
