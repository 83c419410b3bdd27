#pragma once

#include "soak/Holdings.h"

#include <cstdio>
#include <vector>

/// What was held in the course of time, and whether it grows.
///
/// The first third of the time is for what is made once and kept. Growth is how much more the last
/// third holds than the second, by their medians, so that a peak counts for nothing and a leak for
/// about a third of all that has leaked.
class Curve
{
public:
    /// A measure by its name, what it may grow by, and where it stands in `Holdings`.
    struct Measure {
        const char* name;
        double mayGrow;
        double Holdings::*of;
    };

    static const std::vector<Measure>& Measures();

    /// Takes the memory for that many samples, so that its own does not show.
    explicit Curve(std::size_t count) { samples.reserve(count); }

    void Add(double minute, const Holdings& holdings) { samples.push_back({minute, holdings}); }

    /// Of at least six samples.
    double GrowthOf(const Measure& measure) const;

    /// Says of each measure whether it grows. False when one does.
    bool Judge() const;

    /// One line for each sample, values separated by commas.
    bool WriteTable(const char* path) const;

private:
    struct Sample {
        double minute;
        Holdings holdings;
    };

    double Median(const Measure& measure, std::size_t from, std::size_t to) const;

    std::vector<Sample> samples;
};
