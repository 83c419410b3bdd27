#pragma once

#include "viewer/model/records/DumpNames.h"

#include <map>
#include <unordered_map>
#include <vector>

/// How many events of each kind come from each class.
class EventCounts
{
public:
    struct OfClass {
        std::string name;
        std::size_t total = 0;
        std::map<std::string_view, std::size_t> byKind;
    };

    void Add(const DumpRecord& record);

    /// Gives what has been added since the last time its names: ids are those of one dump.
    void Name(const DumpNames& names);

    /// Of what has been named, most frequent first. Classes of one name are one: each module has an
    /// id of its own for it.
    std::vector<OfClass> ByClass() const;

private:
    struct Cell {
        const DumpRecord* example = nullptr;
        std::size_t count = 0;
    };

    std::unordered_map<std::uint64_t, Cell> cells; // by ids of class and kind
    std::map<std::string, OfClass> byName;
};
