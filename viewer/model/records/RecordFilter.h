#pragma once

#include "viewer/model/records/DumpNames.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

/// Which part of a dump is wanted; what is empty wants all.
struct RecordFilter {
    std::string thread; ///< id or name
    std::string className;
    std::string object;                   ///< name, or what `address` was read from
    std::optional<std::uint64_t> address; ///< of the object
    std::int64_t from = std::numeric_limits<std::int64_t>::min(); ///< microseconds, inclusive
    std::int64_t to = std::numeric_limits<std::int64_t>::max();   ///< microseconds, inclusive

    bool Passes(const DumpRecord& record, const DumpNames& names) const;
    bool WantsAll() const
    {
        return thread.empty() && className.empty() && object.empty() &&
               from == std::numeric_limits<std::int64_t>::min() &&
               to == std::numeric_limits<std::int64_t>::max();
    }

    bool IsInTime(std::int64_t begin, std::int64_t end) const { return begin <= to && end >= from; }
};
