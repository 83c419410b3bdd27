#include "viewer/model/records/WallClock.h"

#include <ctime>
#include <iomanip>
#include <sstream>

namespace
{

constexpr std::int64_t million = 1000000;

// After so many years dates begin again. What the system's calendar knows is less than what a dump
// can say, but holds those that begin with 1970.
constexpr std::int64_t eraYears = 400;
constexpr std::int64_t eraSeconds = 146097 * std::int64_t(86400);

std::int64_t RoundDown(std::int64_t number, std::int64_t step)
{
    return number - (number % step + step) % step;
}

// Dates are counted as if the wall were in Greenwich, which has no summer time to jump over.
std::int64_t SecondsOf(std::tm date)
{
    const std::int64_t years = RoundDown(date.tm_year - 70, eraYears);
    date.tm_year -= static_cast<int>(years);
#ifdef _WIN32
    return years / eraYears * eraSeconds + _mkgmtime64(&date);
#else
    return years / eraYears * eraSeconds + timegm(&date);
#endif
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
    const std::int64_t era = RoundDown(second / million, eraSeconds);
    const std::time_t sinceEra = static_cast<std::time_t>(second / million - era);
    // The viewer has one thread. NOLINTNEXTLINE(concurrency-mt-unsafe)
    const std::tm date = *std::gmtime(&sinceEra);

    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::setfill('0') << std::setw(4) << date.tm_year + 1900 + era / eraSeconds * eraYears
         << std::put_time(&date, "-%m-%d %H:%M:%S") << '.' << std::setw(3)
         << (microseconds - second) / 1000;
    return text.str();
}
