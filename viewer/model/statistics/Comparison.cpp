#include "viewer/model/statistics/Comparison.h"

#include "viewer/model/records/EventKind.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace
{

using Comparison::Verdict;
typedef std::vector<std::int64_t> Durations;

/// How far, in standard deviations, the ranks of `after` among both are from those of equals:
/// above 0 where they took longer. Both are in order.
double RankDeviation(const Durations& before, const Durations& after)
{
    const auto ofBefore = static_cast<double>(before.size());
    const auto ofAfter = static_cast<double>(after.size());
    const double all = ofBefore + ofAfter;
    double ranks = 0, ties = 0;
    std::size_t i = 0, j = 0;
    while (i < before.size() || j < after.size()) {
        const bool isNextBefore = j == after.size() || (i < before.size() && before[i] < after[j]);
        const std::int64_t value = isNextBefore ? before[i] : after[j];
        const std::size_t rank = i + j;
        const std::size_t firstAfter = j;
        while (i < before.size() && before[i] == value)
            ++i;
        while (j < after.size() && after[j] == value)
            ++j;
        const auto tied = static_cast<double>(i + j - rank);
        ranks += static_cast<double>(j - firstAfter) * (static_cast<double>(rank) + (tied + 1) / 2);
        ties += tied * tied * tied - tied;
    }
    const double deviation = ranks - ofAfter * (all + 1) / 2;
    const double variance = ofBefore * ofAfter / 12 * (all + 1 - ties / (all * (all - 1)));
    return variance > 0 ? deviation / std::sqrt(variance) : 0;
}

Verdict VerdictOf(Durations& before, Durations& after, const Comparison::Row& row)
{
    constexpr std::size_t few = 8;
    constexpr double oneInAThousand = 3.29;
    if (before.size() < few || after.size() < few)
        return Verdict::TooFew;
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    const double deviation = RankDeviation(before, after);
    const std::int64_t difference = std::abs(row.medianAfter - row.medianBefore);
    if (difference == 0)
        return Verdict::Same;
    if (std::abs(deviation) < oneInAThousand || difference * 20 < row.medianBefore)
        return Verdict::Noise;
    return deviation > 0 ? Verdict::Slower : Verdict::Faster;
}

bool IsNoise(Verdict verdict)
{
    return verdict == Verdict::Same || verdict == Verdict::TooFew || verdict == Verdict::Noise;
}

/// How much time more or less all calls of it took, as far as medians tell.
std::int64_t Weight(const Comparison::Row& row)
{
    const auto time = [](std::size_t count, std::int64_t median) {
        return static_cast<std::int64_t>(count) * median;
    };
    return std::abs(time(row.countAfter, row.medianAfter) -
                    time(row.countBefore, row.medianBefore));
}

typedef std::map<std::string, Comparison::ErrorRow> ErrorRows;

void CountErrors(const Recordings& recordings, std::size_t Comparison::ErrorRow::*counter,
                 ErrorRows& rows)
{
    for (const Recording& recording : recordings) {
        for (const DumpRecord& record : recording.dump.records) {
            if (!ErrorFates::IsRaised(record.kind) || !recording.Passes(record))
                continue;
            const std::string what = recording.dump.names.Error(record);
            rows[what].what = what;
            ++(rows[what].*counter);
        }
    }
}

} // namespace

std::vector<Comparison::Row> Comparison::Of(std::vector<ScopeStatistics::Row> before,
                                            std::vector<ScopeStatistics::Row> after)
{
    std::map<std::string, std::pair<ScopeStatistics::Row*, ScopeStatistics::Row*>> byName;
    for (ScopeStatistics::Row& row : before)
        byName[row.name].first = &row;
    for (ScopeStatistics::Row& row : after)
        byName[row.name].second = &row;

    std::vector<Row> rows;
    for (auto& [name, both] : byName) {
        const auto [one, other] = both;
        Row row = {name,
                   one ? one->count : 0,
                   other ? other->count : 0,
                   one ? one->median : 0,
                   other ? other->median : 0,
                   one ? Verdict::Gone : Verdict::New};
        if (one && other)
            row.verdict = VerdictOf(one->durations, other->durations, row);
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(), [](const Row& one, const Row& other) {
        return std::make_pair(IsNoise(one.verdict), -Weight(one)) <
               std::make_pair(IsNoise(other.verdict), -Weight(other));
    });
    return rows;
}

std::vector<Comparison::ErrorRow> Comparison::OfErrors(const Recordings& before,
                                                       const Recordings& after)
{
    ErrorRows byWhat;
    CountErrors(before, &ErrorRow::before, byWhat);
    CountErrors(after, &ErrorRow::after, byWhat);

    std::vector<ErrorRow> rows;
    for (const auto& [what, row] : byWhat) {
        if (row.before != row.after)
            rows.push_back(row);
    }
    std::stable_sort(rows.begin(), rows.end(), [](const ErrorRow& one, const ErrorRow& other) {
        return (one.before == 0 || one.after == 0) > (other.before == 0 || other.after == 0);
    });
    return rows;
}
