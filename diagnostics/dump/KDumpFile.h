#pragma once

#include "diagnostics/dump/TextSink.h"

#include <cstddef>

/// A file that a dump is written to: text with lines that end as those of its platform do. It has
/// no memory but itself, and needs no C run time.
class KDumpFile : public TextSink
{
public:
    /// Takes over a file that is open for writing; INVALID_HANDLE_VALUE for none.
    explicit KDumpFile(void* file);
    KDumpFile(const KDumpFile&) = delete;
    KDumpFile& operator=(const KDumpFile&) = delete;

    /// Writes what is left and closes.
    ~KDumpFile();

    /// Whether there is a file to write to.
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
