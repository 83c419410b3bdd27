#pragma once

#include <cstddef>

/// Takes text piece by piece.
class TextSink
{
public:
    /// Appends `length` characters. May raise what its target raises.
    virtual void Write(const char* text, std::size_t length) = 0;

    /// Hands on what has come so far, where it is worth it.
    virtual void Flush() {}

protected:
    ~TextSink() = default;
};
