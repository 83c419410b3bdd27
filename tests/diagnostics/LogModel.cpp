#include "tests/diagnostics/LogModel.h"

#include <cstdio>

#include <windows.h>

namespace
{

const std::map<std::int32_t, const char*> kinds = {
    {-202, "Log_module_added"},
    {-201, "Log_module_removed"},
    {-105, "Root_error"},
    {-104, "Cascade_error"},
    {-103, "Dismissed_error"},
    {-102, "Return_error"},
    {-101, "Warning"},
    {-25, "State_change"},
    {-23, "Notify"},
    {-22, "Update"},
    {-21, "Message_send"},
    {-20, "Message_receive"},
    {-14, "Construction"},
    {-13, "Destruction"},
    {-8, "Scope_pop"},
    {-7, "Scope_push"},
    {-1, "Timing_point"},
    {0, "Timing_point"},
};

std::string Number(std::uint32_t bits)
{
    return std::to_string(static_cast<std::int32_t>(bits));
}

std::string NameOr(const std::string& absent, const LogModel::Names& names, std::uint64_t key)
{
    return names.count(key) ? names.at(key) : absent;
}

std::string What(const LogModel& log, const KLogRecord& record)
{
    const std::string first = Number(record.param1);
    switch (record.kind) {
    case -105:
    case -104:
    case -103:
    case -102:
    case -101:
        return " " + NameOr("(unknown)", log.ids, record.param1);
    case -25:
        return " to " + NameOr("state_" + first, log.states,
                               static_cast<std::uint32_t>(record.classId * 100 + record.param1));
    case -21:
        return " " + NameOr(first, log.states, record.param1);
    case 0:
        return " (" + first + ", " + Number(record.param2) + ")";
    default:
        return "";
    }
}

/// Microseconds cut towards zero, in a notation whose digits behind the point always add.
std::string Age(std::int64_t ticks)
{
    LARGE_INTEGER second;
    QueryPerformanceFrequency(&second);
    const std::int64_t micro = ticks * 1000000 / second.QuadPart;
    const std::int64_t rest = (micro % 1000000 + 1000000) % 1000000;
    char digits[8];
    std::snprintf(digits, sizeof digits, ".%06d", static_cast<int>(rest));
    return std::to_string((micro - rest) / 1000000) + digits;
}

} // namespace

std::string LogModel::RecordText(const KLogRecord& record, std::int64_t reference) const
{
    char object[20];
    std::snprintf(object, sizeof object, "%016llX", record.object);
    std::string text = "% ";
    text += kinds.count(record.kind) ? kinds.at(record.kind) : "unknown event";
    text += What(*this, record);
    text += " in_class " + NameOr("(unknown)", ids, record.classId);
    text += record.kind == 0 && !ids.count(record.pointId)
                ? " at_point " + Number(record.pointId)
                : " at " + NameOr("(unknown)", ids, record.pointId);
    text += std::string(" for_object ") + object + " (" +
            NameOr("unknown", objects, record.object) + ")";
    if (record.threadId != 0)
        text += " in_thread " + Number(record.threadId) + " (" +
                NameOr("unknown", threads, record.threadId) + ")";
    text += "\n    " + Age(record.time - reference) + ", " + std::to_string(record.kind);
    for (const std::uint32_t number :
         {record.param1, record.param2, record.classId, record.pointId})
        text += ", " + Number(number);
    return text + ", " + std::to_string(static_cast<std::int64_t>(record.object)) + ", " +
           Number(record.threadId);
}

std::string LogModel::Text() const
{
    std::string text;
    for (const KLogRecord& record : records)
        text += RecordText(record, records[0].time) + "\n";
    return text;
}
