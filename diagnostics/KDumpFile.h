#pragma once

#include "diagnostics/TextSink.h"

#include <cstddef>

/// A file that a dump is written to: text with lines that end as those of its platform do. It has
/// no memory but itself, and needs no C run time.
class KDumpFile : public TextSink
{
public:
    /// What to do about a file that is there.
    enum class Existing { Replaced, Refused };

    /// Opens a file that others may read and write meanwhile. Nothing makes its folder.
    KDumpFile(const wchar_t* path, Existing existing);
    KDumpFile(const KDumpFile&) = delete;
    KDumpFile& operator=(const KDumpFile&) = delete;

    /// Writes what is left and closes.
    ~KDumpFile();

    bool IsOpen() const;

    /// What cannot be written, on a full disk for example, is lost without a word.
    void Write(const char* text, std::size_t length) override;

private:
    void Add(char character);
    void WriteBuffer();

    void* file;
    std::size_t used;
    char buffer[4096];
};
