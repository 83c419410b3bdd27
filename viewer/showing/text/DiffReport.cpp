#include "viewer/showing/text/DiffReport.h"

#include "viewer/forms/TextForms.h"
#include "viewer/model/statistics/Comparison.h"

namespace
{

using Comparison::Verdict;

std::string Number(std::size_t number)
{
    return TextForms::AlignRight(std::to_string(number), 9);
}

std::string Median(std::size_t count, std::int64_t median)
{
    return TextForms::AlignRight(count == 0 ? "" : TextForms::Seconds(median), 12);
}

std::string Word(const Comparison::Row& row)
{
    switch (row.verdict) {
    case Verdict::Slower:
    case Verdict::Faster: {
        const std::int64_t least = std::max<std::int64_t>(row.medianBefore, 1);
        const std::int64_t percent = (row.medianAfter - row.medianBefore) * 100 / least;
        return (percent > 0 ? "+" : "") + std::to_string(percent) + " %";
    }
    case Verdict::New:
        return "new";
    case Verdict::Gone:
        return "gone";
    case Verdict::TooFew:
        return "too few";
    default:
        return row.verdict == Verdict::Noise ? "noise" : "same";
    }
}

std::string Functions(const std::vector<Comparison::Row>& rows)
{
    std::string text = "    Count    after      Median       after           Function\n";
    for (const Comparison::Row& row : rows)
        text += Number(row.countBefore) + Number(row.countAfter) +
                Median(row.countBefore, row.medianBefore) +
                Median(row.countAfter, row.medianAfter) + TextForms::AlignRight(Word(row), 9) +
                "  " + row.name + "\n";
    return text;
}

std::string Errors(const std::vector<Comparison::ErrorRow>& rows)
{
    if (rows.empty())
        return "\nThe same errors, as often\n";
    std::string text = "\n   Errors    after\n";
    for (const Comparison::ErrorRow& row : rows)
        text += Number(row.before) + Number(row.after) +
                TextForms::AlignRight(row.before == 0  ? "new"
                                      : row.after == 0 ? "gone"
                                                       : "",
                                      6) +
                "  " + row.what + "\n";
    return text;
}

} // namespace

std::string DiffReport::Compose(const Recordings& before, const Recordings& after)
{
    using ScopeStatistics::By;
    return Functions(Comparison::Of(ScopeStatistics::Of(before, By::Function),
                                    ScopeStatistics::Of(after, By::Function))) +
           Errors(Comparison::OfErrors(before, after));
}
