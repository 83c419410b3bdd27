#include "diagnostics/dump/KLogText.h"

#include "diagnostics/dump/TextSink.h"
#include "diagnostics/KLogger.h"

#include <cstring>

namespace
{

const std::int32_t rootError = -105;
const std::int32_t warning = -101;
const std::int32_t stateChange = -25;
const std::int32_t messageSend = -21;
const std::int32_t timingPoint = 0;

const char unknownId[] = "(unknown)"; // stands alone, so it brings its brackets
const char unknown[] = "unknown";     // stands inside brackets

} // namespace

void KLogText::WriteHeader(std::int64_t reference)
{
    Write("%% Reference time: ");
    WriteElapsed(log.startCounter - reference);
    if (*log.startDate) {
        Write(" is approximately ");
        WriteDigits(log.startWallClock.millitm, 10, 1);
        Write("ms past ");
        Write(log.startDate); // brings a line end
    } else {
        Write(" is wrong.\n");
    }
    Write("%%\n");
}

void KLogText::WriteRecord(const KLogRecord& record, std::int64_t reference)
{
    Write("% ");
    WriteName(log.FindEventName(record.kind), "unknown event");
    WriteParameters(record);
    Write(" in_class ");
    WriteName(log.FindIdName(record.classId), unknownId);
    WritePoint(record);

    Write(" for_object ");
    WriteDigits(record.object, 16, 16);
    Write(" (");
    WriteName(log.FindObjectName(record.object), unknown);
    Write(")");

    if (record.threadId != 0) {
        Write(" in_thread ");
        WriteSigned(record.threadId);
        Write(" (");
        WriteName(log.FindThreadName(record.threadId), unknown);
        Write(")");
    }
    WriteNumbers(record, reference);
}

void KLogText::WriteParameters(const KLogRecord& record)
{
    if (record.kind >= rootError && record.kind <= warning) {
        Write(" ");
        WriteName(log.FindIdName(record.param1), unknownId);
    } else if (record.kind == stateChange) {
        Write(" to ");
        WriteNameOrNumber(log.FindClassStateName(record.classId, record.param1), "state_",
                          record.param1);
    } else if (record.kind == messageSend) {
        Write(" ");
        WriteNameOrNumber(log.FindMessageName(record.param1), "", record.param1);
    } else if (record.kind == timingPoint) {
        Write(" (");
        WriteSigned(record.param1);
        Write(", ");
        WriteSigned(record.param2);
        Write(")");
    }
}

void KLogText::WritePoint(const KLogRecord& record)
{
    const KLogNames::Name* const name = log.FindIdName(record.pointId);
    if (!name && record.kind == timingPoint) {
        Write(" at_point ");
        WriteSigned(record.pointId);
    } else {
        Write(" at ");
        WriteName(name, unknownId);
    }
}

void KLogText::WriteNumbers(const KLogRecord& record, std::int64_t reference)
{
    Write("\n    ");
    WriteElapsed(record.time - reference);
    Write(", ");
    WriteSigned(std::int64_t{record.kind});
    for (const std::uint32_t number :
         {record.param1, record.param2, record.classId, record.pointId}) {
        Write(", ");
        WriteSigned(number);
    }
    Write(", ");
    WriteSigned(static_cast<std::int64_t>(record.object));
    Write(", ");
    WriteSigned(record.threadId);
}

void KLogText::WriteName(const KLogNames::Name* name, const char* absent)
{
    if (name)
        sink.Write(name->GetText(), name->length);
    else
        Write(absent);
}

void KLogText::WriteNameOrNumber(const KLogNames::Name* name, const char* lead,
                                 std::uint32_t number)
{
    WriteName(name, lead);
    if (!name)
        WriteSigned(number);
}

// Whole seconds are rounded down and the digits right of the point always count upward, so a
// quarter of a second before the reference reads -1.750000.
void KLogText::WriteElapsed(std::int64_t ticks)
{
    std::int64_t seconds = ticks / log.counterFrequency;
    std::int64_t micro = ticks % log.counterFrequency * 1000000 / log.counterFrequency;
    if (micro < 0) {
        --seconds;
        micro += 1000000;
    }
    WriteSigned(seconds);
    Write(".");
    WriteDigits(static_cast<std::uint64_t>(micro), 10, 6);
}

void KLogText::WriteSigned(std::int64_t value)
{
    if (value < 0)
        Write("-");
    const std::uint64_t bits = static_cast<std::uint64_t>(value);
    WriteDigits(value < 0 ? 0 - bits : bits, 10, 1);
}

void KLogText::WriteDigits(std::uint64_t value, unsigned base, int atLeast)
{
    char digits[20];
    char* const end = digits + sizeof digits;
    char* first = end;
    for (; value != 0 || end - first < atLeast; value /= base)
        *--first = "0123456789ABCDEF"[value % base];
    sink.Write(first, static_cast<std::size_t>(end - first));
}

void KLogText::Write(const char* text)
{
    sink.Write(text, std::strlen(text));
}
