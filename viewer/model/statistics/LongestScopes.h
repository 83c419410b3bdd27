#pragma once

#include "viewer/model/Recording.h"

/// The scopes that took longest, among those whose durations are known.
namespace LongestScopes
{

struct Scope {
    const Recording* recording;
    const TimelineEntry* entry; // a scope
};

/// Of what passed the filters, `most` at most, the longest first.
std::vector<Scope> Of(const Recordings& recordings, std::size_t most);

} // namespace LongestScopes
