#pragma once

#include "viewer/model/flows/Flow.h"
#include "viewer/model/records/DumpNames.h"

/// Which call stood behind which. The recorder does not tell; but queues pass on in order of
/// arrival, a call returns as soon as its command has been executed, and all events that were
/// scheduled before a burst have been fired when it ends.
namespace Flows
{

/// In no order. What leaves no record of its own where it arrives has none.
std::vector<Flow> Of(const std::vector<Timeline>& timelines, const DumpNames& names);

} // namespace Flows
