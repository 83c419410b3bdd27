#pragma once

#include <cstddef>

/// Handles that this process holds open, as the system counts them.
std::size_t CountHandles();

/// Expects its block to leave as many handles open as it found. Run the scenario once before: what
/// opens handles on first use keeps them.
class ExpectSameHandles
{
public:
    ExpectSameHandles() : before(CountHandles()) {}
    ExpectSameHandles(const ExpectSameHandles&) = delete;
    ExpectSameHandles& operator=(const ExpectSameHandles&) = delete;
    ~ExpectSameHandles();

private:
    std::size_t before;
};
