#pragma once

class MXmlMarkup;

/// The names of the families of values, as a filed document has them in the attribute "type".
namespace ValueFamily
{
const wchar_t String[] = L"string"; ///< texts
const wchar_t Char[] = L"char";     ///< single characters
const wchar_t Byte[] = L"byte";     ///< bytes, as numbers
const wchar_t Bool[] = L"bool";     ///< 1 and 0
const wchar_t UInt[] = L"uint";     ///< unsigned numbers of 16 and 32 bits
const wchar_t Int[] = L"int";       ///< signed numbers of 16 and 32 bits
const wchar_t Float[] = L"float";   ///< floating numbers of either width
} // namespace ValueFamily

/// The attribute that has the family; a group has none.
const wchar_t valueFamilyAttribute[] = L"type";

/// Writes the declaration and the root element of a filed document into an empty one, and moves to
/// the root.
void StartFiledDocument(MXmlMarkup& document, const wchar_t* rootTag);

/// Leaves a group; false without a document, and at the top.
bool LeaveGroup(MXmlMarkup* document);
