#pragma once

#include <cstdint>
#include <string_view>

/// The kinds of event that a dump can hold, by number.
namespace EventKind
{

constexpr std::int32_t LogModuleAdded = -202;
constexpr std::int32_t LogModuleRemoved = -201;
constexpr std::int32_t RootError = -105;
constexpr std::int32_t CascadeError = -104;
constexpr std::int32_t DismissedError = -103;
constexpr std::int32_t ReturnError = -102;
constexpr std::int32_t Warning = -101;
constexpr std::int32_t StateChange = -25;
constexpr std::int32_t Notify = -23;
constexpr std::int32_t Update = -22;
constexpr std::int32_t MessageSend = -21;
constexpr std::int32_t MessageReceive = -20;
constexpr std::int32_t Construction = -14;
constexpr std::int32_t Destruction = -13;
constexpr std::int32_t ScopePop = -8;
constexpr std::int32_t ScopePush = -7;
constexpr std::int32_t NamedTimingPoint = -1;
constexpr std::int32_t TimingPoint = 0;

/// Those that carry an error code as their first parameter.
constexpr bool IsError(std::int32_t kind)
{
    return kind >= RootError && kind <= Warning;
}

/// Those that carry a source line as their second parameter.
constexpr bool HasLine(std::int32_t kind)
{
    return kind == RootError || kind == DismissedError || kind == Construction ||
           kind == Destruction;
}

/// Those that come from a class and a function: all but the joining and parting of logs.
constexpr bool HasPlace(std::int32_t kind)
{
    return kind != LogModuleAdded && kind != LogModuleRemoved;
}

/// As the dump writes it, "unknown event" for what has no name.
std::string_view Name(std::int32_t kind);

/// Whether some kind has this name.
bool IsName(std::string_view name);

/// One word for the kinds of one sort, for viewers that filter or colour by it: scope, error,
/// state, lifetime, timing, message, log, other.
std::string_view Category(std::int32_t kind);

} // namespace EventKind
