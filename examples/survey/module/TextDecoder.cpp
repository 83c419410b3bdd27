#include "examples/survey/module/TextDecoder.h"

#include "varek/Text.h"

namespace
{

bool StartsWith(const std::string& bytes, const std::string& mark)
{
    return bytes.compare(0, mark.size(), mark) == 0;
}

/// `low` and `high` are the places of the two bytes in a unit.
std::wstring DecodeUtf16(const std::string& bytes, std::size_t low, std::size_t high)
{
    std::wstring text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
        const unsigned lowByte = static_cast<unsigned char>(bytes[i + low]);
        const unsigned highByte = static_cast<unsigned char>(bytes[i + high]);
        text += static_cast<wchar_t>(highByte << 8 | lowByte);
    }
    return text;
}

} // namespace

std::wstring DecodeText(const std::string& bytes)
{
    if (StartsWith(bytes, "\xFF\xFE"))
        return DecodeUtf16(bytes, 0, 1);
    if (StartsWith(bytes, "\xFE\xFF"))
        return DecodeUtf16(bytes, 1, 0);
    return varek::FromUtf8(bytes.substr(StartsWith(bytes, "\xEF\xBB\xBF") ? 3 : 0));
}
