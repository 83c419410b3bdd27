#pragma once

#include <cstdint>
#include <functional>
#include <string>

class Order;

/// Runs a scenario once, its threads taking their turns as `order` says, and answers what went
/// wrong, or an empty text.
///
/// It goes wrong when the scenario says so, when nobody can go on, or nobody but by time running
/// out again and again, when there is no end, and when threads, handles or heap blocks are left
/// over. What ran is then abandoned where it stands. `told`, if any, hears of every call of the
/// kernel.
std::string RunOnce(const std::function<void()>& scenario, Order& order,
                    const std::function<void(const std::string&)>& told = nullptr);
