#include "viewer/model/statistics/ScopeStatistics.h"

#include "viewer/forms/TextForms.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace
{

using ScopeStatistics::By;
using ScopeStatistics::Row;

/// The rows of one recording, by number as long as they are counted.
class Counter
{
public:
    Counter(const Recording& recording, By by) : names(recording.dump.names), by(by)
    {
        for (const Timeline& timeline : recording.timelines)
            CountTimeline(timeline);
        for (const Flow& flow : recording.flows) {
            Cell& cell = CellOf(*flow.to.record);
            waitsOf[&cell].push_back(flow.Wait());
        }
        Finish();
    }

    template <class Take>
    void ForEach(Take take) const
    {
        for (const auto& [key, cell] : cells)
            take(cell.row, WaitsOf(cell));
    }

private:
    struct Cell {
        Row row;
        const DumpRecord* example = nullptr;
        std::size_t wholeAround = 0; // whole scopes of the row that are open
    };

    struct Open {
        Cell* cell;
        std::uint32_t depth;
        bool isWhole;
    };

    void CountTimeline(const Timeline& timeline)
    {
        for (const TimelineEntry& entry : timeline.entries) {
            if (!entry.isScope)
                continue;
            CloseDownTo(entry.depth);
            Cell& cell = CellOf(*entry.record);
            Count(entry, cell);
            open.push_back({&cell, entry.depth, entry.IsWhole()});
            cell.wholeAround += entry.IsWhole();
        }
        CloseDownTo(0);
    }

    void CloseDownTo(std::uint32_t depth)
    {
        for (; !open.empty() && open.back().depth >= depth; open.pop_back())
            open.back().cell->wholeAround -= open.back().isWhole;
    }

    static void Count(const TimelineEntry& scope, Cell& cell)
    {
        ++cell.row.count;
        if (!scope.IsWhole()) {
            ++cell.row.cut;
            return;
        }
        cell.row.durations.push_back(scope.Duration());
        cell.row.self += scope.self;
        if (cell.wholeAround == 0)
            cell.row.total += scope.Duration();
    }

    Cell& CellOf(const DumpRecord& record)
    {
        const std::uint64_t key = by == By::Object  ? record.object
                                  : by == By::Class ? KeyOf(0, record.classId)
                                                    : KeyOf(record.classId, record.pointId);
        Cell& cell = cells[key];
        if (!cell.example)
            cell.example = &record;
        return cell;
    }

    void Finish()
    {
        for (auto& [key, cell] : cells)
            cell.row.name = NameOf(*cell.example);
    }

    std::string NameOf(const DumpRecord& record) const
    {
        if (by == By::Class)
            return names.Class(record);
        if (by == By::Function)
            return names.Class(record) + "." + names.Function(record);
        const std::string& name = names.Object(record);
        if (record.object == 0)
            return "no object";
        return name.empty() ? TextForms::Address(record.object) + " " + names.Class(record) : name;
    }

    const std::vector<std::int64_t>& WaitsOf(const Cell& cell) const
    {
        static const std::vector<std::int64_t> none;
        const auto waits = waitsOf.find(&cell);
        return waits == waitsOf.end() ? none : waits->second;
    }

    const DumpNames& names;
    const By by;
    std::unordered_map<std::uint64_t, Cell> cells;
    std::unordered_map<const Cell*, std::vector<std::int64_t>> waitsOf;
    std::vector<Open> open;
};

/// Rows of one name are one: each module has ids of its own for it.
struct Merged {
    Row row;
    std::vector<std::int64_t> waits;

    void Add(const Row& other, const std::vector<std::int64_t>& itsWaits)
    {
        row.name = other.name;
        row.count += other.count;
        row.cut += other.cut;
        row.total += other.total;
        row.self += other.self;
        row.durations.insert(row.durations.end(), other.durations.begin(), other.durations.end());
        waits.insert(waits.end(), itsWaits.begin(), itsWaits.end());
    }

    Row Finish()
    {
        row.median = ScopeStatistics::Percentile(row.durations, 50);
        row.percentile = ScopeStatistics::Percentile(row.durations, 99);
        row.slowest = ScopeStatistics::Percentile(row.durations, 100);
        row.handed = waits.size();
        row.wait = ScopeStatistics::Percentile(waits, 50);
        return std::move(row);
    }
};

struct Column {
    const char* name;
    std::int64_t (*value)(const Row&);
};

constexpr Column columns[] = {
    {"self", [](const Row& row) { return row.self; }},
    {"total", [](const Row& row) { return row.total; }},
    {"count", [](const Row& row) { return static_cast<std::int64_t>(row.count); }},
    {"median", [](const Row& row) { return row.median; }},
    {"p99", [](const Row& row) { return row.percentile; }},
    {"slowest", [](const Row& row) { return row.slowest; }},
    {"wait", [](const Row& row) { return row.wait; }},
};

} // namespace

std::vector<Row> ScopeStatistics::Of(const Recordings& recordings, By by)
{
    std::map<std::string, Merged> byName;
    for (const Recording& recording : recordings)
        Counter(recording, by).ForEach([&](const Row& row, const std::vector<std::int64_t>& waits) {
            byName[row.name].Add(row, waits);
        });

    std::vector<Row> rows;
    rows.reserve(byName.size());
    for (auto& [name, merged] : byName)
        rows.push_back(merged.Finish());
    Sort(rows, "self");
    return rows;
}

std::vector<std::string> ScopeStatistics::SortColumns()
{
    std::vector<std::string> names = {"name"};
    for (const Column& column : columns)
        names.emplace_back(column.name);
    return names;
}

void ScopeStatistics::Sort(std::vector<Row>& rows, const std::string& column)
{
    if (column == "name")
        std::stable_sort(rows.begin(), rows.end(),
                         [](const Row& one, const Row& other) { return one.name < other.name; });
    for (const auto& [name, value] : columns) {
        if (column == name)
            std::stable_sort(rows.begin(), rows.end(),
                             [value = value](const Row& one, const Row& other) {
                                 return value(one) > value(other);
                             });
    }
}

std::int64_t ScopeStatistics::Percentile(std::vector<std::int64_t>& values, std::size_t share)
{
    if (values.empty())
        return 0;
    const std::size_t rank = (values.size() * share + 99) / 100;
    const auto place =
        values.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(rank, 1) - 1);
    std::nth_element(values.begin(), place, values.end());
    return *place;
}
