#pragma once

#include "xml/scan/MXmlTokenCursor.h"

/// Reads the next name, or a single character where none stands. False at the end of the text.
bool NextXmlNameToken(MXmlTokenCursor& cursor);

/// Whether the cursor's token is what `name` looks for: the same, or the same up to one of " =/[]"
/// in `name`.
bool XmlTokenMatches(const MXmlTokenCursor& cursor, const wchar_t* name);

/// Looks for an attribute in the tag behind whose "<" the cursor's `next` stands: by name, or with
/// a null name the one of that number, counted from 0. If found by name, the cursor is on the
/// value, or on the name if it stands without one; by number, on the name. If not, `next` is where
/// a new attribute goes.
bool FindXmlAttribute(MXmlTokenCursor& cursor, const wchar_t* name, std::int32_t number);
