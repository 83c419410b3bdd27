#include "viewer/model/statistics/LongestScopes.h"

#include <algorithm>

std::vector<LongestScopes::Scope> LongestScopes::Of(const Recordings& recordings, std::size_t most)
{
    const auto isLonger = [](const Scope& one, const Scope& other) {
        return one.entry->Duration() > other.entry->Duration();
    };
    std::vector<Scope> longest; // in order
    for (const Recording& recording : recordings) {
        for (const Timeline& timeline : recording.timelines) {
            for (const TimelineEntry& entry : timeline.entries) {
                const Scope scope = {&recording, &entry};
                if (!entry.IsWhole() ||
                    (longest.size() == most && !isLonger(scope, longest.back())))
                    continue;
                longest.insert(std::upper_bound(longest.begin(), longest.end(), scope, isLonger),
                               scope);
                longest.resize(std::min(longest.size(), most));
            }
        }
    }
    return longest;
}
