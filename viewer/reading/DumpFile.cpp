#include "viewer/reading/DumpFile.h"

#include "viewer/forms/TextForms.h"
#include "viewer/reading/minidump/MinidumpDumps.h"
#include "viewer/reading/minidump/MinidumpFile.h"
#include "viewer/reading/text/TextDumps.h"

namespace
{

/// "1 of host.exe with 3 records, 2 of varek.dll with 78 records", empty unless of a minidump.
std::string RecordersOf(const std::vector<Dump>& dumps)
{
    std::string text;
    for (std::size_t i = 0; i < dumps.size(); ++i) {
        if (!dumps[i].recorder.empty())
            text += (text.empty() ? "" : ", ") + std::to_string(i + 1) + " of " +
                    dumps[i].recorder + " with " +
                    TextForms::Count(dumps[i].records.size(), "record");
    }
    return text;
}

} // namespace

std::vector<Dump> DumpFile::Read(std::string bytes)
{
    if (MinidumpFile::IsOne(bytes))
        return MinidumpDumps::Read(bytes);
    std::vector<Dump> dumps = TextDumps::Read(std::move(bytes));
    if (dumps.empty())
        throw NotADump();
    return dumps;
}

Dump DumpFile::Choose(std::vector<Dump> dumps, std::size_t number)
{
    if (number > dumps.size())
        throw std::runtime_error("there is only " + TextForms::Count(dumps.size(), "dump"));
    const std::size_t chosen = number == 0 ? dumps.size() : number;
    Dump& dump = dumps[chosen - 1];
    dump.findings.dumpsBeside = dumps.size() - 1;
    dump.findings.dumpNumber = chosen;
    dump.findings.recorders = RecordersOf(dumps);
    return std::move(dump);
}
