#pragma once

#include <string>

class MException;

/// The filers' work as Boost PropertyTree does it, on wide trees of the same shape.
class PropertyTreePeer
{
public:
    /// Builds a tree of that many typed values and writes it as XML.
    static std::wstring WriteValues(unsigned count);

    /// Parses such a text and converts every value; answers a sum over them.
    static double ReadValues(const std::wstring& text);

    /// Writes a chain as text.
    static std::wstring WriteChain(const MException& exception);

    /// Reads a chain back, and answers how many errors and parameters it has.
    static unsigned ReadChain(const std::wstring& text);
};
