#include "viewer/forms/Utf8.h"

#include <utf8cpp/utf8.h>

#include <algorithm>
#include <cstdint>

namespace
{

constexpr char32_t replacement = 0xFFFD;

bool IsPlain(char letter)
{
    return letter >= 0x20 && letter < 0x7F;
}

bool IsTail(char byte)
{
    return (byte & 0xC0) == 0x80;
}

void Append(std::string& text, char32_t character)
{
    utf8::append(character, std::back_inserter(text));
}

void AppendShown(std::string& text, char32_t character)
{
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    Append(text, isControl ? replacement : character);
}

char32_t Unit(std::string_view bytes, std::size_t at, bool isBigEndian)
{
    if (at + 1 >= bytes.size())
        return 0;
    const auto byte = [&](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
    return static_cast<char32_t>(byte(at + !isBigEndian) << 8 | byte(at + isBigEndian));
}

} // namespace

std::string Utf8::FromName(std::string_view name)
{
    if (std::all_of(name.begin(), name.end(), IsPlain))
        return std::string(name);

    std::string text;
    if (utf8::is_valid(name.begin(), name.end())) {
        for (auto letter = name.begin(); letter != name.end();)
            AppendShown(text, utf8::unchecked::next(letter));
    } else {
        for (const char letter : name)
            AppendShown(text, static_cast<unsigned char>(letter));
    }
    return text;
}

std::string Utf8::FromUtf16(std::string_view bytes, bool isBigEndian)
{
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const char32_t unit = Unit(bytes, at, isBigEndian);
        const char32_t next = Unit(bytes, at + 2, isBigEndian);
        const bool isPair = unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000;
        if (isPair) {
            Append(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            at += 2;
        } else {
            Append(text, unit >= 0xD800 && unit < 0xE000 ? replacement : unit);
        }
    }
    return text;
}

std::size_t Utf8::Length(std::string_view text)
{
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsTail));
}

std::size_t Utf8::Offset(std::string_view text, std::size_t character)
{
    std::size_t offset = 0;
    for (; offset < text.size(); ++offset) {
        if (!IsTail(text[offset]) && character-- == 0)
            break;
    }
    return offset;
}
