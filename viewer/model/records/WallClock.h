#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// A moment by the clock on the wall of whoever wrote a dump. The dump does not tell the time zone.
class WallClock
{
public:
    /// From the date in the header, such as "Sat Nov 21 07:53:48 2026", and milliseconds past it.
    static std::optional<WallClock> Parse(std::string_view date, std::int64_t milliseconds);

    /// Midnight of a date, in microseconds since 1970 began.
    static std::int64_t OfDate(int year, int month, int day);

    explicit WallClock(std::int64_t sinceEpoch) : microseconds(sinceEpoch) {}

    std::int64_t SinceEpoch() const { return microseconds; }

    /// "2026-11-21 07:53:48.377"
    std::string Text() const;

private:
    std::int64_t microseconds; // since 1970 began there
};
