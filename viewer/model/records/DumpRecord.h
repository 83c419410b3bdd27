#pragma once

#include <cstdint>

/// One event of a dump: the raw numbers of its second line. `DumpNames` knows what they mean.
struct DumpRecord {
    std::int64_t time;     ///< microseconds since the oldest record
    std::uint64_t object;  ///< address, or 0
    std::int32_t kind;     ///< see EventKind
    std::int32_t param1;   ///< code of an error, new state, message, or the caller's own
    std::int32_t param2;   ///< source line of errors and objects, or the caller's own
    std::int32_t classId;  ///< of the code that raised the event
    std::int32_t pointId;  ///< function, or point in it
    std::int32_t threadId; ///< 0 when the record was still being written
};

/// Two ids of a record as one key.
constexpr std::uint64_t KeyOf(std::int32_t first, std::int32_t second)
{
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(first)) << 32 |
           static_cast<std::uint32_t>(second);
}
