#pragma once

#include <string>

class IInFilerTagged;

/// Reads from two filers of the same by a sequence of operations, and answers the first rule that
/// was broken, or an empty text. The default is 1, or "default".
///
/// An operation is a letter and the tag it is given, up to a ";":
///
///     s string  c char  d double  f float  b bool  y byte  u, U 16, 32 bits unsigned
///     i, I 16, 32 bits  ( begin a group  ) end a group  D document
///
/// `told`, where wanted, gets what each operation delivered, up to a ";", and in parentheses if its
/// answer was false.
std::string PlayOnFilers(IInFilerTagged& filer, IInFilerTagged& other,
                         const std::string& operations, std::wstring* told = nullptr);

/// The same on readers of that document.
std::string PlayFilerInput(const std::wstring& document, const std::string& operations,
                           std::wstring* told = nullptr);

/// The input of that number: a document, mostly of values and groups and mostly damaged, and
/// operations on it, most of which fit.
void MakeFilerInput(unsigned number, std::wstring& document, std::string& operations);
