#pragma once

#include "viewer/model/flows/Flow.h"
#include "viewer/model/records/Dump.h"

#include <unordered_map>

/// What became of the errors that were raised.
///
/// A dismissal on a thread is that of the latest error raised there and not yet dismissed, and of
/// those before it in the same chain: between the errors of a chain the thread did nothing but
/// leave scopes and destroy objects. An error that a command raises goes on to its caller, and is
/// dismissed there.
class ErrorFates
{
public:
    ErrorFates() = default;
    ErrorFates(const std::vector<DumpRecord>& records, const std::vector<Flow>& flows);

    /// Those that nothing dismissed, in order of time.
    const std::vector<const DumpRecord*>& Undismissed() const { return undismissed; }

    /// Of an error its dismissal, of a dismissal the first error that it ended; null for none.
    const DumpRecord* PartnerOf(const DumpRecord& record) const;

    static bool IsRaised(std::int32_t kind);

private:
    std::unordered_map<const DumpRecord*, const DumpRecord*> partners;
    std::vector<const DumpRecord*> undismissed;
};
