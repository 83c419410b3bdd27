#include "viewer/forms/Utf8.h"

#include <algorithm>
#include <cstdint>

namespace
{

constexpr char32_t replacement = 0xFFFD;

void Append(std::string& text, char32_t character)
{
    const auto tail = [&](int shift) {
        text += static_cast<char>(0x80 | (character >> shift & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6);
        tail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | character >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | character >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

bool IsTail(char byte)
{
    return (byte & 0xC0) == 0x80;
}

unsigned Byte(std::string_view text, std::size_t at)
{
    return static_cast<unsigned char>(text[at]);
}

/// Length of the character that `text` begins with, 0 if that is none.
std::size_t CharacterLength(std::string_view text)
{
    const unsigned lead = Byte(text, 0);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (length == 1)
        return 1;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length ||
        !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), IsTail))
        return 0;

    // Not longer than needed, no half of a UTF-16 pair, nothing beyond the last character.
    const unsigned second = Byte(text, 1);
    const bool isOutside = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second >= 0xA0) ||
                           (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second >= 0x90);
    return isOutside ? 0 : length;
}

bool IsUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

bool IsControl(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

bool IsPlain(char letter)
{
    return letter >= 0x20 && letter < 0x7F;
}

char32_t Utf16Unit(std::string_view bytes, std::size_t at)
{
    return at + 1 < bytes.size() ? Byte(bytes, at) | Byte(bytes, at + 1) << 8 : 0;
}

std::string FromUtf16(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size() / 2);
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const char32_t unit = Utf16Unit(bytes, at);
        const char32_t next = Utf16Unit(bytes, at + 2);
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

} // namespace

std::string Utf8::FromFile(std::string bytes)
{
    if (bytes.compare(0, 2, "\xFF\xFE") == 0)
        return FromUtf16(std::string_view(bytes).substr(2));
    if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0)
        bytes.erase(0, 3);
    return bytes;
}

std::string Utf8::FromName(std::string_view name)
{
    if (std::all_of(name.begin(), name.end(), IsPlain))
        return std::string(name);

    const bool isLatin1 = !IsUtf8(name);
    std::string text;
    for (const char letter : name) {
        const auto character = static_cast<unsigned char>(letter);
        if (character >= 0x80 && !isLatin1)
            text += letter;
        else
            Append(text, IsControl(character) ? replacement : character);
    }
    return text;
}

std::size_t Utf8::Length(std::string_view text)
{
    return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsTail));
}
