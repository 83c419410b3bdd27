#pragma once

#include <cstdint>
#include <string>

/// What a survey of a file found in it as an XML document.
struct XmlReport {
    bool isXml = false;      ///< whether it looks like one; nothing else is filled if not
    bool wellFormed = false; ///< with one root element
    std::wstring finding;    ///< in words, with its offset in characters; empty if well-formed
    std::uint64_t elements = 0;
    std::uint64_t depth = 0; ///< of the innermost element; the root's is 1
};

/// What a survey of a file found.
struct SurveyReport {
    std::uint64_t bytes = 0;
    std::uint64_t lines = 0;       ///< line ends, and a last line without one
    std::uint64_t words = 0;       ///< runs of anything but blanks
    std::uint64_t longestLine = 0; ///< in bytes, without its line end
    std::uint32_t crc32 = 0;       ///< of the whole file
    XmlReport xml;
};
