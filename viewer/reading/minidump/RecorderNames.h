#pragma once

#include "viewer/model/records/DumpRecord.h"
#include "viewer/model/records/RecordNames.h"
#include "viewer/reading/minidump/MinidumpFile.h"
#include "viewer/reading/minidump/RecorderLayout.h"

#include <unordered_map>

/// The names that a recorder in the memory of a process knows. Where its own tables are missing,
/// those of classes, functions and errors come from the literals in the images, whose addresses are
/// their ids.
class RecorderNames
{
public:
    RecorderNames(const RecorderLayout& layout, const Bytes& core, const AddressSpace& memory,
                  const std::vector<MinidumpFile::Module>& modules);

    /// As the readable line of the record would have them.
    RecordNames Of(const DumpRecord& record);

    /// Whether a table of names goes on where the dump holds nothing.
    bool areMissing = false;

private:
    typedef std::unordered_map<std::uint64_t, std::string_view> Table;

    Table ReadTable(const RecorderLayout& layout, const Bytes& core, std::uint32_t offset);
    std::string_view IdName(std::int32_t id);
    std::string_view Literal(std::int32_t id);
    static std::string_view Find(const Table& table, std::uint64_t key);

    const AddressSpace& memory;
    const std::vector<MinidumpFile::Module>& modules;
    Table threads, ids, states, objects;
    std::unordered_map<std::int32_t, std::string> literals;
};
