#pragma once

#include "viewer/model/records/Dump.h"

#include <stdexcept>

/// A file in which there is nothing of a dump.
struct NotADump : std::runtime_error {
    NotADump() : std::runtime_error("this is not a dump of a flight recorder") {}
};

/// The dumps in a file, which is a text or a minidump.
namespace DumpFile
{

/// One or more, in order of the file. Raises `NotADump`, `NoRecorder`.
std::vector<Dump> Read(std::string bytes);

/// The one with this number, from 1; 0 is the usual choice: of texts the last, of the recorders in
/// a minidump the one with most records. Raises `std::runtime_error` when there are not so many.
Dump Choose(std::vector<Dump> dumps, std::size_t number);

} // namespace DumpFile
