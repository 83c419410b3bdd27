#pragma once

#include <string>
#include <string_view>

/// Dumps come as the recorder wrote them, which is Latin-1, or as what passed them on made of that.
/// The viewer itself speaks UTF-8.
namespace Utf8
{

/// The bytes of a text file without the mark at its front; UTF-16, which PowerShell makes of what a
/// program prints, is turned into UTF-8. Other texts stay as they are.
std::string FromFile(std::string bytes);

/// A name as it can be shown: Latin-1 unless it is UTF-8, control characters replaced.
std::string FromName(std::string_view name);

/// How many characters a text has, which is how wide it looks in most scripts.
std::size_t Length(std::string_view text);

} // namespace Utf8
