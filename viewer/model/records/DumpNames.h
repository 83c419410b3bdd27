#pragma once

#include "viewer/model/records/DumpRecord.h"
#include "viewer/model/records/RecordNames.h"

#include <string>
#include <unordered_map>

/// The names of what the records of a dump have as numbers, learnt from their readable lines.
///
/// In the recorder the first name of an id stays for good, so one readable line that has it is
/// enough for all records, also for those that were written before the id was named.
class DumpNames
{
public:
    void Learn(const DumpRecord& record, const RecordNames& text);

    /// Names as UTF-8, empty where there is none.
    const std::string& Object(const DumpRecord& record) const;
    const std::string& Thread(std::int32_t threadId) const;

    /// "(unknown)" where there is no name.
    const std::string& Class(const DumpRecord& record) const;
    const std::string& Function(const DumpRecord& record) const;

    /// Code of an error, name of a state or of a message that was sent; "(unknown)", "state_7" and
    /// "7" where there is none. Empty for errors without a code, as dismissed ones are, and for
    /// other kinds.
    std::string Parameter(const DumpRecord& record) const;

    /// "CannotOpen at FileReader.FileReader": what one error has in common with others.
    std::string Error(const DumpRecord& record) const;

private:
    template <class Key>
    using Map = std::unordered_map<Key, std::string>;

    Map<std::int32_t> ids; // classes, functions and errors share one space
    Map<std::int32_t> messages;
    Map<std::int32_t> threads;
    Map<std::uint64_t> states;
    Map<std::uint64_t> objects;
};
