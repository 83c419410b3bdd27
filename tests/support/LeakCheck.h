#pragma once

#include <gtest/gtest.h>

#include <cstdint>

/// After every test, expects as many heap blocks to be out as before it.
class LeakCheck : public testing::EmptyTestEventListener
{
public:
    LeakCheck();

    /// Leaves the running test unchecked. Give the reason beside the call.
    static void Skip();

private:
    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;

    static std::int64_t expected;
    static bool skipped;
};
