#pragma once

#include <string>

/// The wide text in the bytes of a file: UTF-16 of either byte order behind a byte order mark,
/// UTF-8 otherwise. Bytes that are no UTF-8 become replacement characters.
std::wstring DecodeText(const std::string& bytes);
