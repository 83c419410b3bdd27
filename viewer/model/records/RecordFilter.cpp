#include "viewer/model/records/RecordFilter.h"

bool RecordFilter::Passes(const DumpRecord& record, const DumpNames& names) const
{
    const bool threadPasses = thread.empty() || thread == std::to_string(record.threadId) ||
                              thread == names.Thread(record.threadId);
    const bool classPasses = className.empty() || className == names.Class(record);
    const bool objectPasses =
        object.empty() || record.object == address || object == names.Object(record);
    return threadPasses && classPasses && objectPasses;
}
