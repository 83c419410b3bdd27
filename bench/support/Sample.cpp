#include "bench/support/Sample.h"

#include <algorithm>

void Sample::Add(double value)
{
    values.push_back(value);
    sorted = false;
}

double Sample::Quantile(double share)
{
    if (!sorted)
        std::sort(values.begin(), values.end());
    sorted = true;
    return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
}
