#pragma once

#include "tests/support/Allocations.h"
#include "varek/OpenHandles.h"

#include <windows.h>

/// Whether the scenario leaves as many heap blocks and handles out as it found, once the threads of
/// the module are done with what they had. It is run again when it does not, ten times at most: the
/// first runs make what stays, names, and a handle for each lock of the process that is waited for.
template <class Scenario>
bool LeavesNothing(Scenario scenario, bool handlesCount = true)
{
    for (int run = 0; run < 10; ++run) {
        const std::int64_t blocks = CountBlocks();
        const std::size_t handles = varek::CountOpenHandles();
        scenario();
        for (int i = 0; i < 100; ++i, Sleep(2))
            if (CountBlocks() == blocks && (!handlesCount || varek::CountOpenHandles() == handles))
                return true;
    }
    return false;
}
