#pragma once

#include "viewer/model/Recording.h"

/// How often scopes were entered and how long they took: by function, by class, by object.
///
/// Durations are those of scopes with both ends in the dump; of others it is known only that they
/// were. Those of all recordings count together.
namespace ScopeStatistics
{

enum class By { Function, Class, Object };

/// Times are in microseconds.
struct Row {
    std::string name;        ///< "Pump.Drain", "Pump", "main pump" or "000000000253F8F0 Pump"
    std::size_t count = 0;   ///< all scopes
    std::size_t cut = 0;     ///< of these, those with an end outside the dump
    std::int64_t total = 0;  ///< durations; of scopes within one of the same row nothing is added
    std::int64_t self = 0;   ///< durations without the scopes directly inside
    std::int64_t median = 0; ///< half of the scopes, and 99 of 100, took at most so long
    std::int64_t percentile = 0; ///< see `median`
    std::int64_t slowest = 0;
    std::size_t handed = 0;              ///< how many came through a queue, with a flow to them
    std::int64_t wait = 0;               ///< half of these waited there at most so long
    std::vector<std::int64_t> durations; ///< of each scope, in no order
};

/// Of what passed the filters; most self time first.
std::vector<Row> Of(const Recordings& recordings, By by);

/// The columns by which rows can be sorted: "name" goes upward, all others downward.
std::vector<std::string> SortColumns();
void Sort(std::vector<Row>& rows, const std::string& column);

/// The value that `share` of 100 of `values` do not exceed, 0 if there is none; reorders them.
std::int64_t Percentile(std::vector<std::int64_t>& values, std::size_t share);

} // namespace ScopeStatistics
