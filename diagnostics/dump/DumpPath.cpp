#include "diagnostics/dump/DumpPath.h"

#include <algorithm>
#include <cwchar>
#include <stdexcept>

#include <windows.h>

DumpPath::DumpPath(const wchar_t* prefix) : length(0)
{
    const std::size_t given = std::wcslen(prefix);
    if (given > longestPrefix)
        throw std::length_error("DumpPath");
    std::copy_n(prefix, given + 1, this->prefix);
    *path = L'\0';
}

void* DumpPath::MakeFile(const wchar_t* ending)
{
    for (std::uint32_t attempt = 1; attempt <= mostAttempts; ++attempt) {
        Compose(ending, attempt);
        const HANDLE file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE || GetLastError() != ERROR_FILE_EXISTS)
            return file;
    }
    return INVALID_HANDLE_VALUE;
}

void DumpPath::Compose(const wchar_t* ending, std::uint32_t attempt)
{
    length = 0;
    Add(prefix);
    ComposeTime();
    Add(L"-");
    Add(GetCurrentProcessId(), 1);
    if (attempt > 1) {
        Add(L"-");
        Add(attempt, 1);
    }
    Add(ending);
}

void DumpPath::ComposeTime()
{
    SYSTEMTIME now;
    GetLocalTime(&now);
    Add(L"-");
    Add(now.wYear, 4);
    Add(now.wMonth, 2);
    Add(now.wDay, 2);
    Add(L"-");
    Add(now.wHour, 2);
    Add(now.wMinute, 2);
    Add(now.wSecond, 2);
    Add(L"-");
    Add(now.wMilliseconds, 3);
}

void DumpPath::Add(const wchar_t* text)
{
    while (*text)
        path[length++] = *text++;
    path[length] = L'\0';
}

void DumpPath::Add(std::uint32_t number, int digits)
{
    wchar_t text[11];
    wchar_t* const end = text + 10;
    wchar_t* first = end;
    *end = L'\0';
    for (; number != 0 || end - first < digits; number /= 10)
        *--first = static_cast<wchar_t>(L'0' + number % 10);
    Add(first);
}
