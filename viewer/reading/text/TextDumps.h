#pragma once

#include "viewer/model/records/Dump.h"

/// The dumps in a text, whatever has become of the text on its way.
namespace TextDumps
{

/// In order of the text, each with its records in order of time; none when there is nothing of a
/// dump in `bytes`.
std::vector<Dump> Read(std::string bytes);

} // namespace TextDumps
