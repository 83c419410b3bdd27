#pragma once

#include "xml/scan/MXmlNodeScan.h"

/// What nodes look like in markup: plain text into it, and out of it again. A null pointer counts
/// as the empty text.
namespace XmlMarkupText
{

/// The text with references for "<", "&" and ">", and for the quotes as well with `quotes`; with
/// `keepReferences` well-formed references are left alone.
std::wstring Escape(const wchar_t* text, bool quotes, bool keepReferences);

/// So many characters of the text with the five named references and numeric ones resolved; others
/// remain as they are. A numeric reference gives one 16-bit character. One that gives zero adds the
/// zero and remains behind it.
std::wstring Unescape(const wchar_t* text, std::int32_t length);

/// The text as CDATA, over two sections wherever it holds "]]>".
std::wstring WrapCdata(const wchar_t* text);

/// The source text of a node; empty for a type that is none. False, with an empty result, for CDATA
/// that holds "]]>" and for `XmlNodeLoneEndTag`.
bool Build(std::int32_t type, const wchar_t* text, std::wstring& result);

} // namespace XmlMarkupText
