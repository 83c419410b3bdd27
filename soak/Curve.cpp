#include "soak/Curve.h"

#include <algorithm>

const std::vector<Curve::Measure>& Curve::Measures()
{
    static const std::vector<Measure> measures = {
        {"heap bytes", 64.0 * 1024, &Holdings::heapBytes}, // names of new threads, at first
        {"private bytes", 512.0 * 1024, &Holdings::privateBytes},
        {"handles", 2, &Holdings::handles},
        {"threads", 0, &Holdings::threads},
    };
    return measures;
}

double Curve::Median(const Measure& measure, std::size_t from, std::size_t to) const
{
    std::vector<double> values;
    for (std::size_t i = from; i < to; ++i)
        values.push_back(samples[i].holdings.*measure.of);
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double Curve::GrowthOf(const Measure& measure) const
{
    const std::size_t third = samples.size() / 3;
    const std::size_t last = samples.size() - third;
    return Median(measure, last, samples.size()) - Median(measure, last - third, last);
}

bool Curve::Judge() const
{
    bool flat = true;
    for (const Measure& measure : Measures()) {
        const double growth = GrowthOf(measure);
        const bool holds = growth <= measure.mayGrow;
        flat = flat && holds;
        std::printf("%-14s grew by %.0f, may by %.0f  %s\n", measure.name, growth, measure.mayGrow,
                    holds ? "ok" : "GROWS");
    }
    return flat;
}

bool Curve::WriteTable(const char* path) const
{
    std::FILE* const file = std::fopen(path, "w");
    if (!file)
        return false;
    std::fprintf(file, "minute");
    for (const Measure& measure : Measures())
        std::fprintf(file, ",%s", measure.name);
    for (const Sample& sample : samples) {
        std::fprintf(file, "\n%.3f", sample.minute);
        for (const Measure& measure : Measures())
            std::fprintf(file, ",%.0f", sample.holdings.*measure.of);
    }
    std::fprintf(file, "\n");
    return std::fclose(file) == 0;
}
