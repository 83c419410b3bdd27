#include "viewer/forms/TextForms.h"

#include "viewer/forms/Utf8.h"

namespace
{

std::string Blanks(const std::string& text, std::size_t width)
{
    const std::size_t length = Utf8::Length(text);
    return std::string(length < width ? width - length : 0, ' ');
}

} // namespace

std::string TextForms::Seconds(std::int64_t microseconds)
{
    const std::int64_t size = microseconds < 0 ? -microseconds : microseconds;
    const std::string fraction = std::to_string(1000000 + size % 1000000).substr(1);
    return (microseconds < 0 ? "-" : "") + std::to_string(size / 1000000) + "." + fraction;
}

std::string TextForms::Address(std::uint64_t address)
{
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4)
        digits += "0123456789ABCDEF"[address >> shift & 15];
    return digits;
}

std::string TextForms::Count(std::size_t number, const std::string& noun)
{
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string TextForms::Shorten(const std::string& text, std::size_t most)
{
    const std::size_t length = Utf8::Length(text);
    if (length <= most)
        return text;
    const std::size_t behind = most / 2;
    const std::size_t before = most - behind - 1;
    return text.substr(0, Utf8::Offset(text, before)) + "\u2026" +
           text.substr(Utf8::Offset(text, length - behind));
}

std::string TextForms::AlignRight(const std::string& text, std::size_t width)
{
    return Blanks(text, width) + text;
}
