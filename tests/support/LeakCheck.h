#pragma once

#include <gtest/gtest.h>

/// After every test the test main expects as many heap blocks to be out as before it.
struct LeakCheck {
    /// Leaves the running test unchecked. Give the reason beside the call.
    static void Skip() { testing::Test::RecordProperty("leaks", "by design"); }
};
