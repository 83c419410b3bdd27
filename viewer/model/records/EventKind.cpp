#include "viewer/model/records/EventKind.h"

#include <algorithm>
#include <iterator>

namespace
{

struct Kind {
    std::int32_t number;
    std::string_view name;
    std::string_view category;
};

constexpr Kind kinds[] = {
    {EventKind::ScopePush, "Scope_push", "scope"},
    {EventKind::ScopePop, "Scope_pop", "scope"},
    {EventKind::TimingPoint, "Timing_point", "timing"},
    {EventKind::NamedTimingPoint, "Timing_point", "timing"},
    {EventKind::Construction, "Construction", "lifetime"},
    {EventKind::Destruction, "Destruction", "lifetime"},
    {EventKind::StateChange, "State_change", "state"},
    {EventKind::RootError, "Root_error", "error"},
    {EventKind::CascadeError, "Cascade_error", "error"},
    {EventKind::DismissedError, "Dismissed_error", "error"},
    {EventKind::ReturnError, "Return_error", "error"},
    {EventKind::Warning, "Warning", "error"},
    {EventKind::MessageSend, "Message_send", "message"},
    {EventKind::MessageReceive, "Message_receive", "message"},
    {EventKind::Notify, "Notify", "message"},
    {EventKind::Update, "Update", "message"},
    {EventKind::LogModuleAdded, "Log_module_added", "log"},
    {EventKind::LogModuleRemoved, "Log_module_removed", "log"},
};

const Kind& Find(std::int32_t number)
{
    static constexpr Kind unknown = {0, "unknown event", "other"};
    for (const Kind& kind : kinds) {
        if (kind.number == number)
            return kind;
    }
    return unknown;
}

} // namespace

std::string_view EventKind::Name(std::int32_t kind)
{
    return Find(kind).name;
}

bool EventKind::IsName(std::string_view name)
{
    const auto hasName = [&](const Kind& kind) { return kind.name == name; };
    return std::any_of(std::begin(kinds), std::end(kinds), hasName);
}

std::string_view EventKind::Category(std::int32_t kind)
{
    return Find(kind).category;
}
