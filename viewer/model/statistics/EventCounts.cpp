#include "viewer/model/statistics/EventCounts.h"

#include "viewer/model/records/EventKind.h"

#include <algorithm>

void EventCounts::Add(const DumpRecord& record)
{
    Cell& cell = cells[KeyOf(record.classId, record.kind)];
    cell.example = &record;
    ++cell.count;
}

void EventCounts::Name(const DumpNames& names)
{
    for (const auto& [key, cell] : cells) {
        const std::string& name = names.Class(*cell.example);
        OfClass& counts = byName[name];
        counts.name = name;
        counts.total += cell.count;
        counts.byKind[EventKind::Name(cell.example->kind)] += cell.count;
    }
    cells.clear();
}

std::vector<EventCounts::OfClass> EventCounts::ByClass() const
{
    std::vector<OfClass> classes;
    classes.reserve(byName.size());
    for (const auto& [name, counts] : byName)
        classes.push_back(counts);
    std::stable_sort(classes.begin(), classes.end(), [](const OfClass& one, const OfClass& other) {
        return one.total > other.total;
    });
    return classes;
}
