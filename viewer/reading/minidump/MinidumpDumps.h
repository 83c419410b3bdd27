#pragma once

#include "viewer/model/records/Dump.h"

#include <stdexcept>

/// A minidump that does not hold what is wanted, told in words that say which kind does.
struct NoRecorder : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The recorders in the minidump of a process.
namespace MinidumpDumps
{

/// One or more, those with most records last. Raises `NoRecorder`.
std::vector<Dump> Read(std::string_view file);

} // namespace MinidumpDumps
