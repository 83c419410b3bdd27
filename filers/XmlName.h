#pragma once

/// Whether a text is a name in the sense of XML, as the tag of an element has to be: a letter, "_"
/// or
/// ":", and behind it also digits, "-", "." and marks that combine. Null and the empty text are
/// none.
bool IsXmlName(const wchar_t* text);
