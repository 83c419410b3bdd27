#pragma once

#include "viewer/model/records/Dump.h"

/// The ages of records as they stand in a text, and the one axis on which they are wanted.
namespace TimeAxis
{

/// Puts the records in order of time: threads race for their places in the ring, and a ring that
/// goes on while it is dumped shows its latest records amid older ones.
///
/// Early recorders told each age by the oldest place of the ring as it was at that moment. Where
/// that was overwritten while the dump was written, ages jump back below 0. Such a jump is undone,
/// as if the record behind it had come at the moment of the one before it.
void PutInOrder(Dump& dump);

} // namespace TimeAxis
