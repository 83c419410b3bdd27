#pragma once

#include <gtest/gtest.h>

#include <set>

/// The handles that this process holds open.
std::set<void*> ListHandles();

/// Expects its block to leave as many handles open as it found. Run the scenario once before: what
/// opens handles on first use keeps them.
struct ExpectSameHandles {
    ~ExpectSameHandles()
    {
        EXPECT_EQ(before, ListHandles().size()) << "handles are open after the scenario";
    }

    const std::size_t before = ListHandles().size();
};
