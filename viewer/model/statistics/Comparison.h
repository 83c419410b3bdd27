#pragma once

#include "viewer/model/statistics/ScopeStatistics.h"

/// What differs between two dumps, by function, and what of that is more than noise.
namespace Comparison
{

enum class Verdict { Same, TooFew, Noise, Faster, Slower, New, Gone };

struct Row {
    std::string name;
    std::size_t countBefore = 0;
    std::size_t countAfter = 0;
    std::int64_t medianBefore = 0;
    std::int64_t medianAfter = 0;
    Verdict verdict = Verdict::Same;
};

/// What differs most, and is no noise, first. A difference of durations is noise unless a rank test
/// of Mann and Whitney gives it less than one chance in a thousand to come from equal functions,
/// and the medians differ by a twentieth at least.
std::vector<Row> Of(std::vector<ScopeStatistics::Row> before,
                    std::vector<ScopeStatistics::Row> after);

/// Errors by what they say and where they were raised.
struct ErrorRow {
    std::string what; ///< "CannotOpen at FileReader.FileReader"
    std::size_t before = 0;
    std::size_t after = 0;
};

/// Those whose numbers differ, new and vanished ones first.
std::vector<ErrorRow> OfErrors(const Recordings& before, const Recordings& after);

} // namespace Comparison
