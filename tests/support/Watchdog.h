#pragma once

#include <gtest/gtest.h>

/// Ends a process in which a test hangs, with exit code 124, and says which test it was and what
/// the flight recorder saw last.
class Watchdog : public testing::EmptyTestEventListener
{
public:
    Watchdog();

private:
    void OnTestProgramEnd(const testing::UnitTest& all) override;
    void OnTestStart(const testing::TestInfo& test) override;
    void OnTestEnd(const testing::TestInfo& test) override;
};
