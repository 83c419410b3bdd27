#pragma once

#include "viewer/model/records/DumpRecord.h"

#include <optional>
#include <string_view>

/// The names in the readable line of a record, each empty where the dump knows none.
///
/// Names can hold anything, also what stands between them in a line. So the line is taken apart
/// from both ends along the numbers of the record, which it repeats.
struct RecordText {
    std::string_view parameter; ///< code of an error, state, message
    std::string_view className;
    std::string_view function;
    std::string_view object;
    std::string_view thread;

    /// None when `line` does not say what `record` says: one of them is damaged, or they are of two
    /// records.
    static std::optional<RecordText> Parse(std::string_view line, const DumpRecord& record);
};
