#pragma once

#include <vector>

/// Measured values, and what share of them lies below what.
class Sample
{
public:
    void Add(double value);

    /// The value below which `share` of all lie, 0.5 for the median. Not of an empty sample.
    double Quantile(double share);
    double Median() { return Quantile(0.5); }

    std::size_t Count() const { return values.size(); }

private:
    std::vector<double> values;
    bool sorted = false;
};
