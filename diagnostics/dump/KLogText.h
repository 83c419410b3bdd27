#pragma once

#include "diagnostics/KLogNames.h"

#include <cstddef>
#include <cstdint>

class KLogger;
struct KLogRecord;
class TextSink;

/// The text form of a log: a header, and two lines for each record, one for people and one for
/// tools.
///
/// It is composed without memory of its own, without locks and without the C run time, so that it
/// can be had from a process that is at its end.
class KLogText
{
public:
    /// Names come from `log`; the text goes to `sink`, whose exceptions go through.
    KLogText(const KLogger& log, TextSink& sink) : log(log), sink(sink) {}

    /// The head of a dump in which times count from the tick `reference`.
    void WriteHeader(std::int64_t reference);

    /// A record, without a line end behind it.
    void WriteRecord(const KLogRecord& record, std::int64_t reference);

private:
    void WriteParameters(const KLogRecord& record);
    void WritePoint(const KLogRecord& record);
    void WriteNumbers(const KLogRecord& record, std::int64_t reference);
    void WriteName(const KLogNames::Name* name, const char* absent);
    void WriteNameOrNumber(const KLogNames::Name* name, const char* lead, std::uint32_t number);
    void WriteElapsed(std::int64_t ticks);
    void WriteSigned(std::int64_t value);
    void WriteSigned(std::uint32_t bits)
    {
        WriteSigned(std::int64_t{static_cast<std::int32_t>(bits)});
    }
    void WriteDigits(std::uint64_t value, unsigned base, int atLeast);
    void Write(const char* text);

    const KLogger& log;
    TextSink& sink;
};
