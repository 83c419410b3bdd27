#include "bench/support/Report.h"

#include "bench/support/Sample.h"

#include <cstdio>
#include <string>

namespace
{

std::string TimeText(double nanoseconds)
{
    const char* const units[] = {"ns", "us", "ms", "s"};
    const char* const* unit = units;
    for (; nanoseconds >= 10000 && unit != units + 3; ++unit)
        nanoseconds /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", nanoseconds < 100 ? 1 : 0, nanoseconds, *unit);
    return text;
}

const char* Verdict(double value, double bar)
{
    return value <= bar ? "ok" : "missed";
}

} // namespace

void Report::Heading(const char* title)
{
    std::printf("\n%s\n", title);
}

void Report::Columns(const char* title)
{
    std::printf("\n%-44s %9s %9s %7s  %-12s %8s\n", title, "ours", "other", "ratio", "10-90 %",
                "bar");
}

void Report::Ratio(const char* what, Sample& nanoseconds, Sample& otherNanoseconds, Sample& ratios,
                   double bar)
{
    const double ratio = ratios.Median();
    std::printf("%-44s %9s %9s %7.3f  %5.3f-%5.3f ", what, TimeText(nanoseconds.Median()).c_str(),
                TimeText(otherNanoseconds.Median()).c_str(), ratio, ratios.Quantile(0.1),
                ratios.Quantile(0.9));
    if (bar > 0)
        std::printf(" <= %5.2f  %s", bar, Verdict(ratio, bar));
    std::printf("\n");
    std::fflush(stdout);
}

void Report::Figure(const char* what, double value, const char* unit)
{
    std::printf("%-44s %12.0f %s\n", what, value, unit);
    std::fflush(stdout);
}

void Report::FigureAtMost(const char* what, double value, const char* unit, double bar)
{
    std::printf("%-44s %12.0f %s  <= %.0f  %s\n", what, value, unit, bar, Verdict(value, bar));
    std::fflush(stdout);
}
