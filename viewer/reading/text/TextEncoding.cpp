#include "viewer/reading/text/TextEncoding.h"

#include "viewer/forms/Utf8.h"

#include <algorithm>

namespace
{

bool BeginsWith(const std::string& bytes, std::string_view mark)
{
    return bytes.compare(0, mark.size(), mark) == 0;
}

/// Whether nearly every second byte of what a file begins with is zero, from `first` on, and hardly
/// any between them.
bool HasZerosFrom(std::size_t first, std::string_view bytes)
{
    constexpr std::size_t enough = 4096;
    std::size_t zeros[2] = {};
    bytes = bytes.substr(0, enough);
    for (std::size_t at = 0; at < bytes.size(); ++at)
        zeros[at % 2] += bytes[at] == '\0';
    return zeros[first] > bytes.size() / 3 && zeros[1 - first] < bytes.size() / 20 + 1;
}

} // namespace

std::string TextEncoding::Undo(std::string bytes, bool& wasGuessed)
{
    if (BeginsWith(bytes, "\xFF\xFE"))
        return Utf8::FromUtf16(std::string_view(bytes).substr(2), false);
    if (BeginsWith(bytes, "\xFE\xFF"))
        return Utf8::FromUtf16(std::string_view(bytes).substr(2), true);
    if (BeginsWith(bytes, "\xEF\xBB\xBF"))
        bytes.erase(0, 3);

    const bool isBigEndian = HasZerosFrom(0, bytes);
    wasGuessed = bytes.size() > 1 && (isBigEndian || HasZerosFrom(1, bytes));
    return wasGuessed ? Utf8::FromUtf16(bytes, isBigEndian) : std::move(bytes);
}
