#pragma once

#include "viewer/model/Recording.h"

/// Several dumps as one story.
namespace Merging
{

/// Puts them on the axis of the earliest, as their wall clocks show, and labels them with their
/// sources. A dump without a wall clock stays on its own axis, and gets a finding.
Recordings Merge(std::vector<Dump> dumps, const std::vector<std::string>& sources);

} // namespace Merging
