#pragma once

#include "varek/Trace.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Reads a file from start to end, a piece at a time. Failures are raised with the parameters
/// "path" and "winErrorCode".
class FileReader
{
    VAREK_TRACED_CLASS(FileReader);

public:
    /// Raises "CannotOpen".
    explicit FileReader(const std::wstring& path);
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;
    ~FileReader();

    /// Reads the next piece; false at the end of the file. Raises "CannotRead".
    bool ReadNext();

    /// The piece read last.
    const char* GetData() const { return buffer.data(); }
    std::size_t GetSize() const { return pieceSize; }

    /// How much of the file has been read.
    std::uint32_t GetPercent() const;

private:
    std::wstring path;
    void* file;
    std::uint64_t totalSize;
    std::uint64_t readSize;
    std::size_t pieceSize;
    std::vector<char> buffer;
};
