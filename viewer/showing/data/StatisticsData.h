#pragma once

#include "viewer/model/statistics/ScopeStatistics.h"

#include <string>

/// Statistics for other programs: a row each, times in whole microseconds, the columns
///
///     name, count, cut, total, self, median, p99, slowest, handed, wait
///
/// as ScopeStatistics::Row tells them. Lines of CSV end with a line feed, and names are quoted;
/// JSON is an array of objects.
namespace StatisticsData
{

std::string ComposeCsv(const std::vector<ScopeStatistics::Row>& rows);
std::string ComposeJson(const std::vector<ScopeStatistics::Row>& rows);

} // namespace StatisticsData
