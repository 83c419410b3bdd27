#pragma once

#include <cstddef>

/// What the process holds of the machine.
struct Holdings {
    double heapBytes;    ///< in blocks of its heaps
    double privateBytes; ///< committed for it alone
    double handles;
    double threads;
};

/// Counts. Nothing should be at work meanwhile.
Holdings CountHoldings();

/// Seconds of computing that the process has taken so far, on all processors.
double SecondsOfComputing();
