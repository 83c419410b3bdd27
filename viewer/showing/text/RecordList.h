#pragma once

#include "viewer/model/Recording.h"

#include <string>

/// All records that pass the filters, in order of time, a line each: time, wall clock, thread, what
/// happened. Several recordings are merged.
namespace RecordList
{

std::string Compose(const Recordings& recordings);

} // namespace RecordList
