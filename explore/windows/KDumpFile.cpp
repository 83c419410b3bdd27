#include "diagnostics/KDumpFile.h"

#include <cstdio>
#include <string>

// Lines end as they do here, and the path is a name without folders.

KDumpFile::KDumpFile(const wchar_t* path, Existing existing) : file(nullptr), used(0)
{
    const std::wstring wide(path);
    const std::string name(wide.begin() + static_cast<std::ptrdiff_t>(wide.rfind(L'\\') + 1),
                           wide.end());
    file = std::fopen(name.c_str(), existing == Existing::Replaced ? "w" : "wx");
}

KDumpFile::~KDumpFile()
{
    if (IsOpen())
        std::fclose(static_cast<std::FILE*>(file));
}

bool KDumpFile::IsOpen() const
{
    return file != nullptr;
}

void KDumpFile::Write(const char* text, std::size_t length)
{
    std::fwrite(text, 1, length, static_cast<std::FILE*>(file));
}
