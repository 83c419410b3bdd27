#pragma once

#include <string>

/// Output of the host, as UTF-8, a whole piece at a time so that threads do not mix theirs.
class Console
{
public:
    /// To the standard output.
    static void Print(const std::wstring& text);

    /// To the standard error.
    static void Complain(const std::wstring& text);
};
