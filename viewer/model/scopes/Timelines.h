#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/model/records/RecordFilter.h"
#include "viewer/model/scopes/Timeline.h"

/// The timelines of all threads of a dump.
namespace Timelines
{

/// In order of appearance. `dump` outlives them, and gets what is found amiss among its scopes.
std::vector<Timeline> Of(Dump& dump);

/// Leaves what `filter` lets pass; a scope passes if any of it is in time, and stays whole. What
/// was in a scope that goes moves up to the next that stays. Threads with nothing left go.
void Keep(const RecordFilter& filter, const DumpNames& names, std::vector<Timeline>& timelines);

} // namespace Timelines
