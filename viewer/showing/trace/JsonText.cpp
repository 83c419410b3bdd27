#include "viewer/showing/trace/JsonText.h"

#include <algorithm>
#include <charconv>

namespace
{

bool NeedsEscape(char letter)
{
    return static_cast<unsigned char>(letter) < 0x20 || letter == '"' || letter == '\\' ||
           letter == '<';
}

void AppendEscape(std::string& text, char letter)
{
    constexpr std::string_view digits = "0123456789abcdef";
    text += "\\u00";
    text += digits[static_cast<unsigned char>(letter) >> 4];
    text += digits[static_cast<unsigned char>(letter) & 15];
}

} // namespace

JsonText& JsonText::Key(std::string_view name)
{
    Text(name);
    text += ':';
    needsComma = false;
    return *this;
}

JsonText& JsonText::Text(std::string_view value)
{
    Separate();
    Quote(value);
    return *this;
}

JsonText& JsonText::Number(std::int64_t value)
{
    Separate();
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    return *this;
}

JsonText& JsonText::Truth(bool value)
{
    Separate();
    text += value ? "true" : "false";
    return *this;
}

JsonText& JsonText::Begin(char bracket)
{
    Separate();
    text += bracket;
    needsComma = false;
    return *this;
}

JsonText& JsonText::End(char bracket)
{
    text += bracket;
    needsComma = true;
    return *this;
}

void JsonText::Separate()
{
    if (needsComma)
        text += ',';
    needsComma = true;
}

void JsonText::Quote(std::string_view value)
{
    text += '"';
    while (!value.empty()) {
        const auto special = std::find_if(value.begin(), value.end(), NeedsEscape);
        text.append(value.begin(), special);
        value.remove_prefix(static_cast<std::size_t>(special - value.begin()));
        if (!value.empty()) {
            AppendEscape(text, value.front());
            value.remove_prefix(1);
        }
    }
    text += '"';
}
