#pragma once

#include <string>

/// Text as the host shows and stores it.
std::string EncodeUtf8(const std::wstring& text);
std::wstring DecodeUtf8(const std::string& bytes);
