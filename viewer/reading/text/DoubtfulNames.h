#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/model/records/RecordNames.h"

#include <set>

/// Lines that can be read in several ways, because names in them have " in_class " or " at " in
/// them. What they mean is told by the numbers: an id has one name in all lines.
class DoubtfulNames
{
public:
    /// `line` has to outlive this. Of lines with the same ids one is enough.
    void Add(const DumpRecord& record, std::string_view line);

    /// Has `names` learn what the lines say; where ways are left over, the first one of each.
    /// Answers for how many lines that was so.
    std::size_t Resolve(DumpNames& names);

private:
    struct Line {
        DumpRecord record;
        std::vector<RecordNames> readings;
    };

    void LearnSettled(DumpNames& names);

    std::vector<Line> lines;
    std::set<std::vector<std::int32_t>> seen;
};
