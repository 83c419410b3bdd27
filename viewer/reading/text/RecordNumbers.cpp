#include "viewer/reading/text/RecordNumbers.h"

#include <charconv>

namespace
{

using RecordNumbers::TakeFront;

template <class Number>
bool Take(std::string_view& text, Number& number)
{
    const auto [behind, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return false;
    text.remove_prefix(static_cast<std::size_t>(behind - text.data()));
    return true;
}

template <class Number>
bool TakeNext(std::string_view& text, Number& number)
{
    return TakeFront(text, ", ") && Take(text, number);
}

/// Exactly six digits.
bool TakeMicroseconds(std::string_view& text, std::uint32_t& microseconds)
{
    const std::size_t before = text.size();
    return Take(text, microseconds) && before - text.size() == 6;
}

} // namespace

bool RecordNumbers::TakeFront(std::string_view& text, std::string_view front)
{
    if (text.substr(0, front.size()) != front)
        return false;
    text.remove_prefix(front.size());
    return true;
}

bool RecordNumbers::TakeNumber(std::string_view& text, std::int32_t& number)
{
    return Take(text, number);
}

bool RecordNumbers::TakeTime(std::string_view& text, std::int64_t& time)
{
    constexpr std::int64_t mostSeconds = 4000000000; // 126 years, and far from any overflow
    std::int64_t seconds = 0;
    std::uint32_t microseconds = 0;
    if (!Take(text, seconds) || !TakeFront(text, ".") || !TakeMicroseconds(text, microseconds) ||
        seconds < -mostSeconds || seconds > mostSeconds)
        return false;
    time = seconds * 1000000 + microseconds;
    return true;
}

bool RecordNumbers::Parse(std::string_view line, DumpRecord& record)
{
    std::int64_t object = 0;
    if (!TakeFront(line, "    ") || !TakeTime(line, record.time) || !TakeNext(line, record.kind) ||
        !TakeNext(line, record.param1) || !TakeNext(line, record.param2) ||
        !TakeNext(line, record.classId) || !TakeNext(line, record.pointId) ||
        !TakeNext(line, object) || !TakeNext(line, record.threadId))
        return false;
    record.object = static_cast<std::uint64_t>(object);
    return line.empty();
}
