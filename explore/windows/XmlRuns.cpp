#include "xml/scan/XmlRuns.h"

#include <cwchar>

// Character by character, of whatever size, and not a block too far.
std::size_t TextLength(const wchar_t* text)
{
    return std::wcslen(text);
}
