#pragma once

#include "viewer/reading/minidump/AddressSpace.h"

/// The description of a recorder as the image of its module holds it: where its core lies and how
/// that is laid out. diagnostics/RecorderDescription.h tells the same from the other side.
struct RecorderLayout {
    /// Those in the memory of a dump whose offsets make sense; versions that are not known are left
    /// out.
    static std::vector<RecorderLayout> FindAll(const AddressSpace& memory);

    std::uint64_t self; ///< where the description lies
    std::uint64_t core;

    std::uint32_t coreSize;
    std::uint32_t records, counterFrequency, startSeconds, startMilliseconds, startCounter,
        startDate, capacity, writeIndex;                                    ///< in the core
    std::uint32_t kindNames, threadNames, idNames, stateNames, objectNames; ///< in the core
    std::uint32_t recordSize;
    std::uint32_t time, kind, param1, param2, classId, pointId, object, threadId; ///< in a record
    std::uint32_t newestName, newestBlock;                                        ///< in a table
    std::uint32_t olderName, nameKey, nameLength, nameText;                       ///< in a name
};
