#include "tests/support/DumpedRecord.h"

#include "diagnostics/KLogger.h"
#include "diagnostics/MFlowLoggerImplementation.h"

#include <sstream>

namespace
{

DumpedRecord ReadRecord(const std::string& text, const std::string& numbers)
{
    DumpedRecord record = {text, 0, {}};
    std::istringstream stream(numbers);
    stream >> record.seconds;
    char comma = 0;
    std::int64_t number = 0;
    while (stream >> comma >> number)
        record.numbers.push_back(number);
    return record;
}

} // namespace

std::vector<DumpedRecord> ReadDump(const std::string& dump)
{
    std::vector<DumpedRecord> records;
    std::istringstream lines(dump);
    std::string text;
    std::string numbers;
    while (std::getline(lines, text))
        if (text.compare(0, 2, "% ") == 0 && std::getline(lines, numbers))
            records.push_back(ReadRecord(text, numbers));
    return records;
}

std::string TakeDump(KLogger& core)
{
    std::ostringstream dump;
    core.WriteDump(dump);
    return dump.str();
}

std::string TakeDump(MFlowLoggerImplementation& logger)
{
    std::ostringstream dump;
    logger.DumpToStream(dump);
    return dump.str();
}

std::vector<std::string> DumpedTexts(KLogger& core)
{
    std::vector<std::string> texts;
    for (const DumpedRecord& record : ReadDump(TakeDump(core)))
        texts.push_back(record.text);
    return texts;
}
