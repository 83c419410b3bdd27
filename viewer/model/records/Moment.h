#pragma once

#include "viewer/model/records/Dump.h"

/// A time as a user writes it: seconds of the dump, "0.25", or what the clock on the wall showed,
/// "10:33:33.129" or "2026-11-21 10:33", as exactly as wanted. What is not written is the whole
/// second or minute.
class Moment
{
public:
    /// Of a text that is not empty.
    static std::optional<Moment> Parse(const std::string& text);

    bool NeedsWallClock() const { return isWallClock; }

    /// The first and the last microsecond of it, on the axis of the dump. A wall clock without a
    /// date is that of the day, before or after, that is nearest to the first record.
    std::int64_t FirstIn(const Dump& dump) const;
    std::int64_t LastIn(const Dump& dump) const { return FirstIn(dump) + length - 1; }

private:
    bool ParseSeconds(const std::string& text);
    bool ParseWallClock(const std::string& text);

    bool isWallClock = false;
    bool hasDate = false;
    std::int64_t time = 0;   // microseconds: of the dump, since 1970 or since midnight
    std::int64_t length = 1; // of what the user has left open
};
