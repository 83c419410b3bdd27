#pragma once

#include <cstdint>
#include <string>

/// How numbers and columns look in what the viewer prints.
namespace TextForms
{

/// Seconds with six digits, negative ones in the usual reading: "-0.250000".
std::string Seconds(std::int64_t microseconds);

/// The width of a column of such times, enough for eleven days.
constexpr std::size_t timeWidth = 13;

/// Sixteen upper-case hexadecimal digits, as in a dump.
std::string Address(std::uint64_t address);

/// "1 record", "2 records"
std::string Count(std::size_t number, const std::string& noun);

/// As it is, or with "…" for what is too much in the middle of it, to `most` characters.
std::string Shorten(const std::string& text, std::size_t most);

/// Filled with blanks at the front, to `width` characters.
std::string AlignRight(const std::string& text, std::size_t width);

} // namespace TextForms
