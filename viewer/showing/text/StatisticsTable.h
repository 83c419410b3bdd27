#pragma once

#include "viewer/model/statistics/ScopeStatistics.h"

#include <string>

/// Statistics as a table, for the eye.
namespace StatisticsTable
{

/// All rows and columns. Unless `width` is 0 lines keep to it: columns are as narrow as can be, and
/// names shortened in the middle.
std::string Compose(const std::vector<ScopeStatistics::Row>& rows, std::size_t width = 0);

/// The first rows, with the columns that matter most, 80 characters wide but for long names.
std::string ComposeShort(const std::vector<ScopeStatistics::Row>& rows, std::size_t most);

} // namespace StatisticsTable
