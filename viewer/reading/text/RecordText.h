#pragma once

#include "viewer/model/records/DumpRecord.h"
#include "viewer/model/records/RecordNames.h"

#include <optional>
#include <vector>

/// The readable line of a record, without the "% " that it begins with.
///
/// Names can hold anything, also what stands between them in a line. So the line is taken apart
/// from both ends along the numbers of the record, which it repeats.
namespace RecordText
{

/// The names in `line`; none when it does not say what `record` says: one of them is damaged, or
/// they are of two records. There can be several readings where names have " in_class " or " at "
/// in them: then this is the one with the longest names in front.
std::optional<RecordNames> Parse(std::string_view line, const DumpRecord& record);

/// All readings of a line that has one.
std::vector<RecordNames> ParseAll(std::string_view line, const DumpRecord& record);

/// Whether a line can have several, which is quick to tell.
bool IsDoubtful(std::string_view line);

} // namespace RecordText
