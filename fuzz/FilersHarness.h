#pragma once

#include <string>

/// Reads from a document by a sequence of operations, and answers the first rule that was broken,
/// or an empty text.
///
/// An operation is a letter and the tag it is given, up to a ";":
///
///     s string  c char  d double  f float  b bool  y byte  u, U 16, 32 bits unsigned
///     i, I 16, 32 bits  ( begin a group  ) end a group  D document
std::string PlayFilerInput(const std::wstring& document, const std::string& operations);

/// The input of that number: a document, mostly of values and groups and mostly damaged, and
/// operations on it, most of which fit.
void MakeFilerInput(unsigned number, std::wstring& document, std::string& operations);
