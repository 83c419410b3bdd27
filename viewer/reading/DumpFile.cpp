#include "viewer/reading/DumpFile.h"

#include "viewer/forms/TextForms.h"
#include "viewer/reading/minidump/MinidumpDumps.h"
#include "viewer/reading/minidump/MinidumpFile.h"
#include "viewer/reading/text/TextDumps.h"

namespace
{

/// "varek.dll with 78 records, host.exe with 3 records", empty unless of a minidump.
std::string RecordersOf(const std::vector<Dump>& dumps)
{
    std::string text;
    for (const Dump& dump : dumps) {
        if (!dump.recorder.empty())
            text += (text.empty() ? "" : ", ") + dump.recorder + " with " +
                    TextForms::Count(dump.records.size(), "record");
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
    Dump& dump = number == 0 ? dumps.back() : dumps[number - 1];
    dump.findings.dumpsBeside = dumps.size() - 1;
    dump.findings.recordersBeside = RecordersOf(dumps);
    return std::move(dump);
}
