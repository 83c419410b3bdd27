#pragma once

#include "viewer/model/records/Dump.h"
#include "viewer/reading/minidump/MinidumpFile.h"
#include "viewer/reading/minidump/RecorderLayout.h"

/// A recorder in the memory of a process.
namespace RecorderMemory
{

/// Its records, in the order of the ring, and their names, as a dump of the recorder at the same
/// moment would have told them. None when the core or the ring is not in `memory`.
std::optional<Dump> Read(const RecorderLayout& layout, const AddressSpace& memory,
                         const std::vector<MinidumpFile::Module>& modules);

} // namespace RecorderMemory
