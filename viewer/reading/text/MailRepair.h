#pragma once

#include <string>
#include <string_view>

/// What mail, chats and other logs do to a dump: they trim blanks, quote and indent lines, put
/// something in front of them, and wrap them.
namespace MailRepair
{

/// The text with its lines as they were, as far as that can be told. Each line of a dump is known
/// by how it begins, wherever in a line that stands; what follows until the next one was wrapped.
/// Other lines stay as they are.
std::string Undo(std::string_view text);

} // namespace MailRepair
