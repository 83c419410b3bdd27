#pragma once

#include "viewer/model/records/DumpRecord.h"

#include <string_view>

/// The numbers of a dump as it writes them.
namespace RecordNumbers
{

/// Reads the second line of a record: "    0.003412, -25, 2, 0, 4212016, 4212320, 489445952, 5120".
/// False when it is anything else.
bool Parse(std::string_view line, DumpRecord& record);

/// Takes a time off the front of `text`, as microseconds. Its digits count upward from whole
/// seconds rounded down, so "-1.750000" is a quarter of a second before 0.
bool TakeTime(std::string_view& text, std::int64_t& time);

/// Takes a number in decimal off the front of `text`.
bool TakeNumber(std::string_view& text, std::int32_t& number);

/// Takes `front` off the front of `text`, if that begins so.
bool TakeFront(std::string_view& text, std::string_view front);

} // namespace RecordNumbers
