#include "examples/survey/host/MiniDumpWriter.h"

#include "examples/survey/host/Console.h"

#include <sstream>

#include <windows.h>

#include <dbghelp.h>

namespace
{

bool WriteMiniDump(const std::wstring& path, _EXCEPTION_POINTERS* pointers)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    MINIDUMP_EXCEPTION_INFORMATION information = {GetCurrentThreadId(), pointers, FALSE};
    const BOOL written = MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file,
                                           MiniDumpNormal, &information, nullptr, nullptr);
    CloseHandle(file);
    return written != FALSE;
}

} // namespace

MiniDumpWriter::MiniDumpWriter(const std::wstring& path) : path(path) {}

void MiniDumpWriter::operator()(_EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& fault = *pointers->ExceptionRecord;
    std::wostringstream text;
    text << L"fault 0x" << std::hex << fault.ExceptionCode << L" at " << fault.ExceptionAddress
         << (WriteMiniDump(path, pointers) ? L"; minidump in " : L"; no minidump in ") << path
         << L"\n";
    Console::Complain(text.str());
}
