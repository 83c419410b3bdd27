#include "examples/survey/module/FileReader.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "foundation/MError.h"

#include <windows.h>

const wchar_t FileReader::className[] = L"FileReader";

namespace
{

const ClassName registered(FileReader::className);

const std::size_t bufferSize = 0x10000;

[[noreturn]] void RaiseFileError(MFlowLocation& location, const wchar_t* literal,
                                 const std::wstring& path)
{
    const DWORD reason = GetLastError();
    MError error;
    location.RaiseRootError(error, literal);
    error.AddParameter(L"path", path.c_str());
    error.AddParameter(L"winErrorCode", reason, false);
    location.Throw(error);
}

} // namespace

FileReader::FileReader(const std::wstring& path)
    : path(path), file(nullptr), totalSize(0), readSize(0), pieceSize(0), buffer(bufferSize)
{
    static MFlowLocation location(className, className);
    file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        RaiseFileError(location.SetObject(this).SetLine(__LINE__), L"CannotOpen", path);
    LARGE_INTEGER size = {};
    GetFileSizeEx(file, &size);
    totalSize = static_cast<std::uint64_t>(size.QuadPart);
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

FileReader::~FileReader()
{
    static MFlowLocation location(className, L"~FileReader");
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
    CloseHandle(file);
}

bool FileReader::ReadNext()
{
    static MFlowLocation location(className, L"ReadNext");
    DWORD size = 0;
    if (!ReadFile(file, buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr))
        RaiseFileError(location.SetObject(this).SetLine(__LINE__), L"CannotRead", path);
    pieceSize = size;
    readSize += size;
    return size != 0;
}

std::uint32_t FileReader::GetPercent() const
{
    return readSize < totalSize ? static_cast<std::uint32_t>(readSize * 100 / totalSize) : 100;
}
