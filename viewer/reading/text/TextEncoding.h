#pragma once

#include <string>

/// How the bytes of a text file stand for text.
namespace TextEncoding
{

/// A text as UTF-8 or, as the recorder writes it, Latin-1, without a mark at its front. UTF-16,
/// which shells and editors make of a dump, is turned into UTF-8: by its mark or, `wasGuessed`,
/// by where its zero bytes stand.
std::string Undo(std::string bytes, bool& wasGuessed);

} // namespace TextEncoding
