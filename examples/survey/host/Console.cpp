#include "examples/survey/host/Console.h"

#include <windows.h>

namespace
{

std::string Utf8(const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, &bytes[0], size, nullptr, nullptr);
    return bytes;
}

void Write(DWORD stream, const std::wstring& text)
{
    const std::string bytes = Utf8(text);
    DWORD written = 0;
    WriteFile(GetStdHandle(stream), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
              nullptr);
}

} // namespace

void Console::Print(const std::wstring& text)
{
    Write(STD_OUTPUT_HANDLE, text);
}

void Console::Complain(const std::wstring& text)
{
    Write(STD_ERROR_HANDLE, text);
}
