#pragma once

#include "diagnostics/KLogger.h"

#include <cstdint>
#include <string>
#include <vector>

/// One record as a dump shows it.
struct DumpedRecord {
    std::string text;                  ///< the line for people
    double seconds;                    ///< the first number
    std::vector<std::int64_t> numbers; ///< kind, two parameters, class, point, object, thread
};

const std::uint32_t ringSize = 0x20000;

/// The records in memory. Their address is the first field of a core, for tools and for us.
inline KLogRecord*& Ring(KLogger& core)
{
    return *reinterpret_cast<KLogRecord**>(&core);
}

/// A core that gives its ring back, which others keep for good.
struct PassingCore : KLogger {
    ~PassingCore() { delete[] Ring(*this); }
};

/// The records of a dump, oldest first.
std::vector<DumpedRecord> ReadDump(const std::string& dump);

std::string TakeDump(KLogger& core);

/// The lines for people, oldest first.
std::vector<std::string> DumpedTexts(KLogger& core);
