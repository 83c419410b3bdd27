#include "diagnostics/dump/KDumpFile.h"

#include <windows.h>

KDumpFile::KDumpFile(void* file) : file(file), used(0) {}

KDumpFile::~KDumpFile()
{
    if (!IsOpen())
        return;
    WriteBuffer();
    CloseHandle(file);
}

bool KDumpFile::IsOpen() const
{
    return file != INVALID_HANDLE_VALUE;
}

void KDumpFile::Write(const char* text, std::size_t length)
{
    for (const char* const end = text + length; text != end; ++text) {
        if (*text == '\n')
            Add('\r');
        Add(*text);
    }
}

void KDumpFile::Add(char character)
{
    if (used == sizeof buffer)
        WriteBuffer();
    buffer[used++] = character;
}

void KDumpFile::WriteBuffer()
{
    DWORD written = 0;
    WriteFile(file, buffer, static_cast<DWORD>(used), &written, nullptr);
    used = 0;
}
