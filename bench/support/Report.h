#pragma once

class Sample;

/// The printed lines of a benchmark: figures, with the bar that they are held against and whether
/// it is cleared.
class Report
{
public:
    /// Above figures.
    static void Heading(const char* title);

    /// Above ratios.
    static void Columns(const char* title);

    /// One side beside another: the median time of an operation for each, the median of the ratios
    /// and their spread. No bar when it is 0.
    static void Ratio(const char* what, Sample& nanoseconds, Sample& otherNanoseconds,
                      Sample& ratios, double bar);

    static void Figure(const char* what, double value, const char* unit);
    static void FigureAtMost(const char* what, double value, const char* unit, double bar);
};
