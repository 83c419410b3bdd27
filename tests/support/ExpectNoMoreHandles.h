#pragma once

#include "varek/OpenHandles.h"

#include <gtest/gtest.h>

#include <windows.h>

/// Expects its block to leave no more handles open than it found. Run the scenario once before:
/// what opens handles on first use keeps them.
struct ExpectNoMoreHandles {
    ~ExpectNoMoreHandles() { EXPECT_GE(before, CountSettled()) << "more handles are open"; }

    /// Threads that end close what is theirs when nobody waits for them any more.
    std::size_t CountSettled() const
    {
        std::size_t count = varek::CountOpenHandles();
        for (int waits = 0; count > before && waits < 100; ++waits, Sleep(1))
            count = varek::CountOpenHandles();
        return count;
    }

    const std::size_t before = varek::CountOpenHandles();
};
