#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Plays an input on a document and answers the first rule that it broke, or an empty text.
///
/// An input is a document and operations on it, separated by "|". An operation is a letter, a
/// character that chooses flags, types or records, and arguments separated by ",":
///
///     <a><b/></a>|f|e|f0b|t0name,value|a0c,data
///
///     L load        f find        e enter         l leave        s save        r restore
///     g read an attribute         v read name and data           p tell the position
///     a add element n add node      t set attribute (current)
///     m replace the inner markup  x set attribute (any record)   c turn the regard of case
///     u escape and unescape       d tell the document's text      w add element with markup inside
///
/// Characters are bytes; those from 128 up stand for characters from 0x100 up.
///
/// `told`, where wanted, gets what is read at the current place, each with a ";", and a "!" for
/// each refusal.
std::string PlayXmlInput(const std::uint8_t* data, std::size_t size, std::wstring* told = nullptr);

/// The same of an input whose document and edits are all well-formed: the index then always has to
/// be that of a fresh parse, which is looked at after every operation.
std::string PlayXmlEdits(const std::string& input);
