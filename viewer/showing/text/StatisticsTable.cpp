#include "viewer/showing/text/StatisticsTable.h"

#include "viewer/forms/TextForms.h"

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

template <class TextOf>
std::string Line(bool isShort, TextOf textOf, const std::string& name)
{
    std::string line;
    for (const Column& column : columns) {
        if (column.isShort || !isShort)
            line += TextForms::AlignRight(textOf(column), column.width);
    }
    return line + "  " + name + "\n";
}

std::string Table(const std::vector<Row>& rows, bool isShort, std::size_t most)
{
    std::string text = Line(
        isShort, [](const Column& column) { return column.name; }, "Name");
    for (std::size_t i = 0; i < std::min(most, rows.size()); ++i)
        text += Line(
            isShort, [&](const Column& column) { return column.text(rows[i]); }, rows[i].name);
    return text;
}

} // namespace

std::string StatisticsTable::Compose(const std::vector<Row>& rows)
{
    return Table(rows, false, rows.size());
}

std::string StatisticsTable::ComposeShort(const std::vector<Row>& rows, std::size_t most)
{
    std::string text = Table(rows, true, most);
    if (rows.size() > most)
        text += "      and " + std::to_string(rows.size() - most) + " more; --stats shows all\n";
    return text;
}
