#pragma once

#include <cstdint>

/// What a survey of a file found.
struct SurveyReport {
    std::uint64_t bytes;
    std::uint64_t lines;       ///< line ends, and a last line without one
    std::uint64_t words;       ///< runs of anything but blanks
    std::uint64_t longestLine; ///< in bytes, without its line end
    std::uint32_t crc32;       ///< of the whole file
};
