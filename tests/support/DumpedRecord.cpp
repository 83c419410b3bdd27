#include "tests/support/DumpedRecord.h"

#include <sstream>

std::vector<DumpedRecord> ReadDump(const std::string& dump)
{
    std::vector<DumpedRecord> records;
    std::istringstream lines(dump);
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, 2, "% ") != 0)
            continue;
        DumpedRecord record = {line, 0, {}};
        std::getline(lines, line);
        std::istringstream numbers(line);
        numbers >> record.seconds;
        char comma = 0;
        for (std::int64_t number = 0; numbers >> comma >> number;)
            record.numbers.push_back(number);
        records.push_back(record);
    }
    return records;
}

std::string TakeDump(KLogger& core)
{
    std::ostringstream dump;
    core.WriteDump(dump);
    return dump.str();
}

std::vector<std::string> DumpedTexts(KLogger& core)
{
    std::vector<std::string> texts;
    for (const DumpedRecord& record : ReadDump(TakeDump(core)))
        texts.push_back(record.text);
    return texts;
}
