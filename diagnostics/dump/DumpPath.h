#pragma once

#include <cstddef>
#include <cstdint>

/// Makes files that are called by the moment, and never one that is there already. It needs no
/// memory but its own, and no C run time.
class DumpPath
{
public:
    /// Every path begins with `prefix`. Raises std::length_error when that is too long.
    explicit DumpPath(const wchar_t* prefix);

    /// Makes a file called the prefix, "-20261121-231805-042-4711" for local time and process, a
    /// further number if there is one of that name, and `ending`. INVALID_HANDLE_VALUE when it
    /// cannot be made. Others may read it meanwhile.
    void* MakeFile(const wchar_t* ending);

    /// The path tried last; empty when there is none yet.
    const wchar_t* Get() const { return path; }

private:
    static const std::size_t longestPrefix = 900;
    static const std::uint32_t mostAttempts = 100;

    void Compose(const wchar_t* ending, std::uint32_t attempt);
    void ComposeTime();
    void Add(const wchar_t* text);
    void Add(std::uint32_t number, int digits);

    std::size_t length;
    wchar_t prefix[longestPrefix + 1];
    wchar_t path[longestPrefix + 100];
};
