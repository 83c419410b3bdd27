#pragma once

#include <cstdint>
#include <limits>
#include <string>

/// Which part of a dump is wanted; what is empty wants all.
struct RecordFilter {
    std::string thread;    ///< id or name
    std::string className; ///< name
    std::string object;    ///< address in hexadecimal, or name
    std::int64_t from = std::numeric_limits<std::int64_t>::min(); ///< microseconds, inclusive
    std::int64_t to = std::numeric_limits<std::int64_t>::max();   ///< microseconds, inclusive
};
