#include "viewer/reading/TimeAxis.h"

#include <algorithm>
#include <unordered_map>

namespace
{

bool IsEarlier(const DumpRecord& one, const DumpRecord& other)
{
    return one.time < other.time;
}

/// The latest time of each thread so far.
class ThreadClocks
{
public:
    /// Whether the thread of `record` has been later before, which by itself it never is.
    bool HasGoneBack(const DumpRecord& record)
    {
        std::int64_t& time = latest.try_emplace(record.threadId, record.time).first->second;
        const bool hasGoneBack = record.threadId != 0 && record.time < time;
        time = std::max(time, record.time);
        return hasGoneBack;
    }

    void Forget() { latest.clear(); }

private:
    std::unordered_map<std::int32_t, std::int64_t> latest;
};

/// The places at which ages jump back below 0.
class Jumps
{
public:
    explicit Jumps(std::vector<DumpRecord>& records) : records(records) {}

    /// How many there were.
    std::size_t Undo()
    {
        for (std::size_t place = 0; place < records.size(); ++place) {
            const bool isBelow = records[place].time < 0;
            records[place].time += offset;
            if (clocks.HasGoneBack(records[place]) && isBelow)
                UndoBefore(place);
        }
        return count;
    }

private:
    // Without a jump only other threads can be below 0, where the first record was slow to read the
    // clock. A thread that goes back shows that there was one, before it or not much earlier.
    void UndoBefore(std::size_t place)
    {
        const std::size_t begin = LargestDropUpTo(place);
        const std::int64_t step = records[begin - 1].time - records[begin].time;
        for (std::size_t moved = begin; moved <= place; ++moved)
            records[moved].time += step;
        offset += step;
        clocks.Forget();
        ++count;
    }

    std::size_t LargestDropUpTo(std::size_t place) const
    {
        constexpr std::size_t farthest = 1000;
        const auto drop = [&](std::size_t at) { return records[at - 1].time - records[at].time; };
        std::size_t largest = place;
        for (std::size_t at = place; at > 0 && place - at < farthest; --at)
            largest = drop(at) > drop(largest) ? at : largest;
        return largest;
    }

    std::vector<DumpRecord>& records;
    ThreadClocks clocks;
    std::int64_t offset = 0;
    std::size_t count = 0;
};

// Races between threads are the rule and not worth a word; a thread by itself is always in order.
std::size_t CountOutOfOrder(const std::vector<DumpRecord>& records)
{
    ThreadClocks clocks;
    return static_cast<std::size_t>(
        std::count_if(records.begin(), records.end(),
                      [&](const DumpRecord& record) { return clocks.HasGoneBack(record); }));
}

} // namespace

void TimeAxis::PutInOrder(Dump& dump)
{
    if (std::is_sorted(dump.records.begin(), dump.records.end(), IsEarlier))
        return;
    dump.findings.ageJumps = Jumps(dump.records).Undo();
    dump.findings.outOfOrder = CountOutOfOrder(dump.records);
    std::stable_sort(dump.records.begin(), dump.records.end(), IsEarlier);
}
