#pragma once

#include <cstdint>

/// One event of the flight recorder: 40 bytes without padding.
///
/// A slot of the ring whose 40 bytes are all zero has never been written; a written one has a
/// `time`. `object` therefore follows `pointId` directly, on a 4-byte boundary.
#pragma pack(push, 4)
struct KLogRecord {
    std::int64_t time;      ///< performance counter ticks at the moment of the event
    std::int32_t kind;      ///< event kind; the names of the kinds are in KLogger.cpp
    std::uint32_t param1;   ///< first parameter: an error id, a new state, a message id
    std::uint32_t param2;   ///< second parameter: the source line of errors and objects
    std::uint32_t classId;  ///< class of the code that raised the event
    std::uint32_t pointId;  ///< function or point in that class
    std::uint64_t object;   ///< address of the object concerned, or 0
    std::uint32_t threadId; ///< thread that recorded the event
};
#pragma pack(pop)

static_assert(sizeof(KLogRecord) == 40, "a record is 40 bytes, here and in every tool");
