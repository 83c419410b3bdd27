#pragma once

#include <string>
#include <string_view>

/// The viewer speaks UTF-8. What it is given need not be.
namespace Utf8
{

/// A name as it can be shown: Latin-1, as the recorder writes it, unless it is UTF-8, which what
/// passed it on may have made of that. Control characters are replaced, those behind 0x7F too.
std::string FromName(std::string_view name);

/// Bytes that are UTF-16 without a mark; halves of pairs are replaced.
std::string FromUtf16(std::string_view bytes, bool isBigEndian);

/// How many characters a text has, which is how wide it looks in most scripts.
std::size_t Length(std::string_view text);

/// Where the character with this number begins, from 0; the end if there are not so many.
std::size_t Offset(std::string_view text, std::size_t character);

} // namespace Utf8
