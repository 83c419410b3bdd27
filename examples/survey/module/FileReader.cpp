#include "examples/survey/module/FileReader.h"

#include "varek/Errors.h"

#include <windows.h>

namespace
{

const std::size_t bufferSize = 0x10000;

} // namespace

FileReader::FileReader(const std::wstring& path)
    : path(path), file(nullptr), totalSize(0), readSize(0), pieceSize(0), buffer(bufferSize)
{
    VAREK_TRACE();
    file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        VAREK_RAISE(L"CannotOpen").With(L"path", path).WithLastError().Throw();
    LARGE_INTEGER size = {};
    GetFileSizeEx(file, &size);
    totalSize = static_cast<std::uint64_t>(size.QuadPart);
}

FileReader::~FileReader()
{
    CloseHandle(file);
}

bool FileReader::ReadNext()
{
    VAREK_TRACE();
    DWORD size = 0;
    if (!ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr))
        VAREK_RAISE(L"CannotRead").With(L"path", path).WithLastError().Throw();
    pieceSize = size;
    readSize += size;
    return size != 0;
}

std::uint32_t FileReader::GetPercent() const
{
    return readSize < totalSize ? static_cast<std::uint32_t>(readSize * 100 / totalSize) : 100;
}
