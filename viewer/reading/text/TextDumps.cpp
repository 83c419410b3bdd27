#include "viewer/reading/text/TextDumps.h"

#include "viewer/reading/text/DumpReader.h"
#include "viewer/reading/text/MailRepair.h"
#include "viewer/reading/text/TextEncoding.h"
#include "viewer/reading/TimeAxis.h"

namespace
{

struct Yield {
    std::size_t records = 0;
    std::size_t torn = 0;
    std::size_t foreignLines = 0;

    explicit Yield(const std::vector<Dump>& dumps)
    {
        for (const Dump& dump : dumps) {
            records += dump.records.size();
            torn += dump.findings.tornRecords;
            foreignLines += dump.findings.foreignLines;
        }
    }

    bool IsDoubtful() const { return (torn + foreignLines) * 50 >= records; }

    bool IsBetterThan(const Yield& other) const
    {
        return records > other.records || (records == other.records && torn < other.torn);
    }
};

std::vector<Dump> ReadRepaired(const std::string& text)
{
    std::vector<Dump> dumps = DumpReader::ReadAll(MailRepair::Undo(text));
    for (Dump& dump : dumps)
        dump.findings.wasMailed = true;
    return dumps;
}

std::vector<Dump> ReadText(const std::string& text)
{
    std::vector<Dump> dumps = DumpReader::ReadAll(text);
    if (!Yield(dumps).IsDoubtful())
        return dumps;
    std::vector<Dump> repaired = ReadRepaired(text);
    return Yield(repaired).IsBetterThan(Yield(dumps)) ? repaired : dumps;
}

} // namespace

std::vector<Dump> TextDumps::Read(std::string bytes)
{
    bool wasGuessed = false;
    std::vector<Dump> dumps = ReadText(TextEncoding::Undo(std::move(bytes), wasGuessed));
    for (Dump& dump : dumps) {
        dump.findings.guessedUtf16 = wasGuessed;
        TimeAxis::PutInOrder(dump);
    }
    return dumps;
}
