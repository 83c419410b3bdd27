#pragma once

#include "diagnostics/KLogRecord.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// What the text of a log is to be, composed of its records and names in a way of its own.
struct LogModel {
    typedef std::map<std::uint64_t, std::string> Names;

    /// All records, each with a line end; the ages count from the first.
    std::string Text() const;

    std::string RecordText(const KLogRecord& record, std::int64_t reference) const;

    std::vector<KLogRecord> records;
    Names ids, states, objects, threads;
};
