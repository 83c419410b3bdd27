#include "viewer/showing/data/StatisticsData.h"

#include "viewer/showing/data/JsonText.h"

namespace
{

struct Column {
    const char* name;
    std::int64_t (*value)(const ScopeStatistics::Row&);
};

constexpr Column columns[] = {
    {"count", [](const auto& row) { return static_cast<std::int64_t>(row.count); }},
    {"cut", [](const auto& row) { return static_cast<std::int64_t>(row.cut); }},
    {"total", [](const auto& row) { return row.total; }},
    {"self", [](const auto& row) { return row.self; }},
    {"median", [](const auto& row) { return row.median; }},
    {"p99", [](const auto& row) { return row.percentile; }},
    {"slowest", [](const auto& row) { return row.slowest; }},
    {"handed", [](const auto& row) { return static_cast<std::int64_t>(row.handed); }},
    {"wait", [](const auto& row) { return row.wait; }},
};

std::string Quoted(const std::string& name)
{
    std::string text = "\"";
    for (const char letter : name)
        text += letter == '"' ? std::string(2, letter) : std::string(1, letter);
    return text + "\"";
}

} // namespace

std::string StatisticsData::ComposeCsv(const std::vector<ScopeStatistics::Row>& rows)
{
    std::string text = "name";
    for (const Column& column : columns)
        text += std::string(",") + column.name;
    text += "\n";
    for (const ScopeStatistics::Row& row : rows) {
        text += Quoted(row.name);
        for (const Column& column : columns)
            text += "," + std::to_string(column.value(row));
        text += "\n";
    }
    return text;
}

std::string StatisticsData::ComposeJson(const std::vector<ScopeStatistics::Row>& rows)
{
    JsonText json;
    json.BeginArray();
    for (const ScopeStatistics::Row& row : rows) {
        json.BeginObject().Key("name").Text(row.name);
        for (const Column& column : columns)
            json.Key(column.name).Number(column.value(row));
        json.EndObject();
    }
    json.EndArray();
    return json.Result() + "\n";
}
