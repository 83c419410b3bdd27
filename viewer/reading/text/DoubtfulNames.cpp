#include "viewer/reading/text/DoubtfulNames.h"

#include "viewer/forms/Utf8.h"
#include "viewer/reading/text/RecordText.h"

#include <algorithm>
#include <map>

namespace
{

/// What the lines leave possible for each id.
class Possible
{
public:
    void Take(const DumpRecord& record, const std::vector<RecordNames>& readings)
    {
        Names classes, functions;
        for (const RecordNames& reading : readings) {
            classes.emplace(reading.className);
            functions.emplace(reading.function);
        }
        Intersect(record.classId, classes);
        Intersect(record.pointId, functions);
    }

    bool Allows(const DumpRecord& record, const RecordNames& reading) const
    {
        return names.at(record.classId).count(reading.className) != 0 &&
               names.at(record.pointId).count(reading.function) != 0;
    }

private:
    typedef std::set<std::string_view> Names; // in the lines

    void Intersect(std::int32_t id, const Names& others)
    {
        const auto [known, isNew] = names.try_emplace(id, others);
        Names common;
        std::set_intersection(known->second.begin(), known->second.end(), others.begin(),
                              others.end(), std::inserter(common, common.begin()));
        known->second = common;
    }

    std::map<std::int32_t, Names> names;
};

bool Contradicts(const std::string& known, std::string_view name)
{
    return known != "(unknown)" && known != Utf8::FromName(name);
}

/// Leaves the readings that pass, unless none would be left: then something else is damaged.
template <class Passes>
void Keep(std::vector<RecordNames>& readings, Passes passes)
{
    std::vector<RecordNames> kept;
    std::copy_if(readings.begin(), readings.end(), std::back_inserter(kept), passes);
    if (!kept.empty())
        readings = kept;
}

} // namespace

void DoubtfulNames::Add(const DumpRecord& record, std::string_view line)
{
    if (seen.insert({record.kind, record.param1, record.classId, record.pointId}).second)
        lines.push_back({record, RecordText::ParseAll(line, record)});
}

std::size_t DoubtfulNames::Resolve(DumpNames& names)
{
    for (std::size_t before = lines.size() + 1; lines.size() < before;) {
        before = lines.size();
        Possible possible;
        for (const Line& line : lines)
            possible.Take(line.record, line.readings);
        for (Line& line : lines) {
            const DumpRecord& record = line.record;
            Keep(line.readings, [&](const RecordNames& reading) {
                return !Contradicts(names.Class(record), reading.className) &&
                       !Contradicts(names.Function(record), reading.function);
            });
            Keep(line.readings,
                 [&](const RecordNames& reading) { return possible.Allows(record, reading); });
        }
        LearnSettled(names);
    }
    for (const Line& line : lines)
        names.Learn(line.record, line.readings.front());
    return lines.size();
}

void DoubtfulNames::LearnSettled(DumpNames& names)
{
    const auto isOpen = [](const Line& line) { return line.readings.size() > 1; };
    const auto settled = std::stable_partition(lines.begin(), lines.end(), isOpen);
    for (auto line = settled; line != lines.end(); ++line)
        names.Learn(line->record, line->readings.front());
    lines.erase(settled, lines.end());
}
