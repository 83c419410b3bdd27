#pragma once

#include "viewer/model/Recording.h"

#include <string>

/// All records that pass the filters, in order of time, a line each: time, wall clock, thread, what
/// happened. Of several recordings, and there is one at least, they are merged. Unless `width` is 0
/// lines keep to it: without the date, and with the names of threads and what happened shortened in
/// the middle.
namespace RecordList
{

std::string Compose(const Recordings& recordings, std::size_t width = 0);

} // namespace RecordList
