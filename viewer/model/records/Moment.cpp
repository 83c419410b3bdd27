#include "viewer/model/records/Moment.h"

#include <cmath>
#include <cstdlib>
#include <regex>

namespace
{

constexpr std::int64_t second = 1000000;
constexpr std::int64_t day = 86400 * second;

std::int64_t NumberIn(const std::ssub_match& digits)
{
    return digits.matched ? std::stoll(digits.str()) : 0;
}

} // namespace

std::optional<Moment> Moment::Parse(const std::string& text)
{
    Moment moment;
    if (moment.ParseSeconds(text) || moment.ParseWallClock(text))
        return moment;
    return std::nullopt;
}

bool Moment::ParseSeconds(const std::string& text)
{
    constexpr double most = 9e12; // what its microseconds still hold
    char* behind = nullptr;
    const double seconds = std::strtod(text.c_str(), &behind);
    if (*behind != '\0' || !(std::abs(seconds) < most))
        return false;
    time = std::llround(seconds * 1e6);
    return true;
}

bool Moment::ParseWallClock(const std::string& text)
{
    const std::regex form(
        R"((?:(\d{4})-(\d\d)-(\d\d)[ T])?(\d\d):(\d\d)(?::(\d\d)(?:\.(\d{1,6}))?)?)");
    std::smatch fields;
    if (!std::regex_match(text, fields, form))
        return false;

    isWallClock = true;
    hasDate = fields[1].matched;
    if (hasDate)
        time = WallClock::OfDate(static_cast<int>(NumberIn(fields[1])),
                                 static_cast<int>(NumberIn(fields[2])),
                                 static_cast<int>(NumberIn(fields[3])));
    time += (NumberIn(fields[4]) * 3600 + NumberIn(fields[5]) * 60 + NumberIn(fields[6])) * second;
    length = fields[6].matched ? second : 60 * second;
    if (fields[7].matched) {
        for (std::ptrdiff_t digit = 0; digit < fields[7].length(); ++digit)
            length /= 10;
        time += NumberIn(fields[7]) * length;
    }
    return true;
}

std::int64_t Moment::FirstIn(const Dump& dump) const
{
    if (!isWallClock)
        return time;
    const std::int64_t begin = dump.MomentAt(dump.Begin());
    std::int64_t wanted = time;
    if (!hasDate) {
        const std::int64_t midnight = begin - (begin % day + day) % day;
        const std::int64_t days = std::llround(static_cast<double>(begin - midnight - time) / day);
        wanted += midnight + days * day;
    }
    return wanted - begin + dump.Begin();
}
