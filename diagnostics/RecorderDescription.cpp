#include "diagnostics/RecorderDescription.h"

#include "diagnostics/KLogger.h"

#include <cstddef>

// In a section of its own, where a tool finds it without a symbol.
#ifdef __GNUC__
#define IN_SECTION_RECORDER __attribute__((section("recorder"), used))
#else
#pragma section("recorder", read, write)
#define IN_SECTION_RECORDER __declspec(allocate("recorder"))
#endif

alignas(16) IN_SECTION_RECORDER RecorderDescription KLogger::description = {
    {'V', 'a', 'r', 'e', 'k', ' ', 'r', 'e', 'c', 'o', 'r', 'd', 'e', 'r', '\x1A', '\0'},
    1,
    sizeof(RecorderDescription),
    &description,
    nullptr,

    sizeof(KLogger),
    offsetof(KLogger, records),
    offsetof(KLogger, counterFrequency),
    offsetof(KLogger, startWallClock) + offsetof(struct __timeb64, time),
    offsetof(KLogger, startWallClock) + offsetof(struct __timeb64, millitm),
    offsetof(KLogger, startCounter),
    offsetof(KLogger, startDate),
    offsetof(KLogger, capacity),
    offsetof(KLogger, writeIndex),
    offsetof(KLogger, eventNames),
    offsetof(KLogger, threadNames),
    offsetof(KLogger, idNames),
    offsetof(KLogger, stateNames),
    offsetof(KLogger, objectNames),

    sizeof(KLogRecord),
    offsetof(KLogRecord, time),
    offsetof(KLogRecord, kind),
    offsetof(KLogRecord, param1),
    offsetof(KLogRecord, param2),
    offsetof(KLogRecord, classId),
    offsetof(KLogRecord, pointId),
    offsetof(KLogRecord, object),
    offsetof(KLogRecord, threadId),

    offsetof(KLogNames, newest),
    offsetof(KLogNames, newestBlock),

    offsetof(KLogNames::Name, older),
    offsetof(KLogNames::Name, key),
    offsetof(KLogNames::Name, length),
    sizeof(KLogNames::Name),

    offsetof(KLogNames::Block, older),
    offsetof(KLogNames::Block, size),

    0,
};
