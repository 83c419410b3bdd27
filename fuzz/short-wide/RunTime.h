#pragma once

#include <cstddef>

/// Included everywhere: what the C run time of Windows has and that of the build machine has not.
extern "C" int _wcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count);
