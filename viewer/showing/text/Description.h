#pragma once

#include "viewer/model/Recording.h"

/// What a record says, in words.
namespace Description
{

/// "Pump.Drain": class and function. Empty where logs are joined or parted, which is done by none.
std::string Place(const DumpRecord& record, const DumpNames& names);

/// "Pump.Drain (main pump)", with the address for an object without a name.
std::string PlaceAndObject(const DumpRecord& record, const DumpNames& names);

/// The kind and what belongs to it, as in the dump: "Root_error RunsDry", "State_change to
/// Running", "Timing_point (1, 2)".
std::string Event(const DumpRecord& record, const DumpNames& names);

/// "Root_error RunsDry at Pump.Drain (main pump), line 38"
std::string Whole(const DumpRecord& record, const DumpNames& names);

/// "260 Command processor thread", and where there are several recordings "host.log: 260 ..."
std::string Thread(std::int32_t threadId, const Recording& recording);

} // namespace Description
