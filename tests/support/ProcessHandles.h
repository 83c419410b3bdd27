#pragma once

#include <cstddef>
#include <vector>

/// The handles that this process holds open.
std::vector<void*> ListHandles();

/// Expects its block to leave as many handles open as it found. Run the scenario once before: what
/// opens handles on first use keeps them.
class ExpectSameHandles
{
public:
    ExpectSameHandles() : before(ListHandles().size()) {}
    ExpectSameHandles(const ExpectSameHandles&) = delete;
    ExpectSameHandles& operator=(const ExpectSameHandles&) = delete;
    ~ExpectSameHandles();

private:
    std::size_t before;
};
