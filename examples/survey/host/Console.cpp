#include "examples/survey/host/Console.h"

#include "varek/Text.h"

#include <windows.h>

namespace
{

void Write(DWORD stream, const std::wstring& text)
{
    const std::string bytes = varek::ToUtf8(text);
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
