#include "viewer/model/Merging.h"

#include <algorithm>

namespace
{

void Move(Dump& dump, std::int64_t by)
{
    for (DumpRecord& record : dump.records)
        record.time += by;
    dump.reference += by;
}

void PutOnAxisOf(const Dump& first, Dump& dump)
{
    if (first.start && dump.start)
        Move(dump, dump.MomentAt(0) - first.MomentAt(0));
    else
        dump.findings.notMerged = true;
}

std::size_t Earliest(const std::vector<Dump>& dumps)
{
    const auto isEarlier = [](const Dump& one, const Dump& other) {
        return one.start && (!other.start || one.MomentAt(0) < other.MomentAt(0));
    };
    return static_cast<std::size_t>(std::min_element(dumps.begin(), dumps.end(), isEarlier) -
                                    dumps.begin());
}

} // namespace

Recordings Merging::Merge(std::vector<Dump> dumps, const std::vector<std::string>& sources)
{
    Recordings recordings;
    const std::size_t earliest = Earliest(dumps);
    for (std::size_t i = 0; i < dumps.size(); ++i) {
        if (i != earliest)
            PutOnAxisOf(dumps[earliest], dumps[i]);
    }
    for (std::size_t i = 0; i < dumps.size(); ++i) {
        recordings.emplace_back(std::move(dumps[i]), sources[i]);
        if (dumps.size() > 1)
            recordings.back().label = sources[i] + ": ";
    }
    return recordings;
}
