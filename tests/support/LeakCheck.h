#pragma once

#include <gtest/gtest.h>

#include <cstdint>

/// After every test, expects as many heap blocks to be out as before it.
class LeakCheck : public testing::EmptyTestEventListener
{
public:
    LeakCheck();

    /// Says that `blocks` blocks of the running test stay out for good. Give the reason beside the
    /// call.
    static void Keep(std::int64_t blocks);

private:
    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;

    static std::int64_t expected;
};
