#pragma once

#include "viewer/model/Recording.h"

#include <string>

/// What differs between two dumps: first functions that got slower or faster, came or went, and
/// errors; then what is noise.
namespace DiffReport
{

std::string Compose(const Recordings& before, const Recordings& after);

} // namespace DiffReport
