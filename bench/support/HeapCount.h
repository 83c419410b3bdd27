#pragma once

#include <cstddef>

/// What goes through `operator new` in this executable, all threads together. Linking this class
/// replaces the global operators by counting ones.
class HeapCount
{
public:
    /// Number of allocations so far.
    static std::size_t Allocations();

    /// Begins a new observation, at what is live now.
    static void ResetPeak();

    /// What is live now beyond what was live at `ResetPeak`; in bytes.
    static std::size_t LiveBytes();

    /// The most that has been live at once since `ResetPeak`, beyond what was live then; in bytes.
    static std::size_t PeakBytes();
};
