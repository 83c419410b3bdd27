#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/model/scopes/Timeline.h"

#include <string>

/// A small dump, written by hand: two threads, two levels of scopes, an error that is raised and
/// dismissed, a state, and names with what stands between names in a line.
extern const char sampleDump[];

/// Two lines of a dump: an event of class `C`, id 10, on thread 7. `function` is its own id.
std::string RecordLines(std::int64_t microseconds, std::int32_t kind, char function,
                        std::int32_t thread = 7);

/// A dump told in short: "+a" enters the function a, "-a" leaves it, "." is a timing point, "2:"
/// turns to thread 2, "~" is a record still being written. Each takes a microsecond, from 0 on.
Dump DumpOf(const std::string& story);

/// Timelines told in short: "7: a0-5 >p1 >b2-3?" is thread 7 with a scope from 0 to 5 and in it the
/// point p and another scope, whose end is lost.
std::string Shape(const std::vector<Timeline>& timelines);
