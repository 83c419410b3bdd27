#include "viewer/model/records/WallClock.h"

#include <ctime>
#include <iomanip>
#include <sstream>

namespace
{

constexpr std::int64_t million = 1000000;

// Dates are counted as if the wall were in Greenwich, which has no summer time to jump over.
std::int64_t SecondsOf(std::tm date)
{
#ifdef _WIN32
    return _mkgmtime64(&date);
#else
    return timegm(&date);
#endif
}

std::int64_t RoundDown(std::int64_t microseconds, std::int64_t step)
{
    return microseconds - (microseconds % step + step) % step;
}

} // namespace

std::optional<WallClock> WallClock::Parse(std::string_view date, std::int64_t milliseconds)
{
    constexpr std::size_t dateLength = 24;
    std::istringstream text{std::string(date)};
    text.imbue(std::locale::classic());
    std::tm fields = {};
    text >> std::get_time(&fields, "%a %b %d %H:%M:%S %Y");
    if (text.fail() || date.size() != dateLength)
        return std::nullopt;
    return WallClock(SecondsOf(fields) * million + milliseconds * 1000);
}

std::int64_t WallClock::OfDate(int year, int month, int day)
{
    std::tm date = {};
    date.tm_year = year - 1900;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    return SecondsOf(date) * million;
}

std::string WallClock::Text() const
{
    const std::int64_t second = RoundDown(microseconds, million);
    const std::time_t seconds = static_cast<std::time_t>(second / million);
    // The viewer has one thread. NOLINTNEXTLINE(concurrency-mt-unsafe)
    const std::tm* const fields = std::gmtime(&seconds);
    if (!fields)
        return "(unknown)"; // beyond what the system's calendar knows

    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::put_time(fields, "%Y-%m-%d %H:%M:%S") << '.' << std::setfill('0') << std::setw(3)
         << (microseconds - second) / 1000;
    return text.str();
}
