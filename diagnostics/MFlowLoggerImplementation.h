#pragma once

#include <cstdint>
#include <iosfwd>

/// What stands behind an `MFlowLogger`: takes events, gives dumps, and can be joined to another.
/// Every operation may be called from any thread.
class MFlowLoggerImplementation
{
public:
    virtual ~MFlowLoggerImplementation() {}

    /// Records one event; never fails. `eventIndex` is one of `FlowEvent`; `classId` and `pointId`
    /// are ids as `FlowId` makes them.
    virtual void LogEvent(std::uint32_t eventIndex, std::uint32_t param1, std::uint32_t param2,
                          std::uint32_t classId, std::uint32_t pointId, const void* object) = 0;

    /// Writes the text of all recorded events. Lets no exception out.
    virtual void DumpToStream(std::ostream& out) = 0;

    /// Writes the dump file, "C:\Temp\DebugDump.log". False when it cannot be opened, because the
    /// folder does not exist for example, or a machine fault ended the dump: it may be called while
    /// crashing.
    virtual bool DumpToFile() = 0;

    /// Sends a copy of all further events and names to `other`, or to nobody when `other` is null
    /// or of a foreign class.
    virtual void AttachLogger(MFlowLoggerImplementation* other) = 0;
};
