#pragma once

#include <functional>

/// Sets our way of doing something beside another, in one process, and prints how they compare.
///
/// The two run in turn in short rounds for about a second, and the ratio is taken within each
/// round, so that whatever else the machine is doing meets both. What counts is the median of the
/// ratios:
///
///     Comparison("timing point : record by hand", 2000, LogPoints, WriteRecords).AtMost(1.15);
class Comparison
{
public:
    /// Does the operation so many times.
    typedef std::function<void(unsigned times)> Work;

    /// `times` operations of each side make a round; a fifth of a millisecond's worth is good,
    /// more when an operation takes longer.
    Comparison(const char* what, unsigned times, Work ours, Work other);

    /// Runs before each measurement, untimed.
    Comparison& Before(std::function<void()> preparation);

    /// Measures and prints; ours may cost `bar` times what the other costs.
    void AtMost(double bar);

    /// Measures and prints without a bar.
    void Show() { AtMost(0); }

private:
    double Measure(const Work& work) const;

    const char* what;
    unsigned times;
    Work ours;
    Work other;
    std::function<void()> preparation;
};
