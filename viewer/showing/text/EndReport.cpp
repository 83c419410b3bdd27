#include "viewer/showing/text/EndReport.h"

#include "viewer/forms/TextForms.h"
#include "viewer/showing/text/Description.h"

#include <algorithm>
#include <unordered_map>

namespace
{

constexpr std::size_t mostThreads = 12;
constexpr std::size_t mostErrors = 8;
constexpr std::size_t mostScopes = 12;

/// The scopes around a record, outermost first.
std::vector<const TimelineEntry*> ScopesAround(const DumpRecord& record,
                                               const std::vector<Timeline>& timelines)
{
    std::vector<const TimelineEntry*> around;
    for (const Timeline& timeline : timelines) {
        if (timeline.threadId != record.threadId)
            continue;
        for (const TimelineEntry& entry : timeline.entries) {
            around.resize(std::min<std::size_t>(around.size(), entry.depth));
            if (entry.record == &record)
                break;
            if (entry.isScope)
                around.push_back(&entry);
        }
    }
    return around;
}

typedef std::unordered_map<std::int32_t, const DumpRecord*> LastRecords;

LastRecords LastRecordsOf(const Recording& recording)
{
    LastRecords last;
    const std::vector<DumpRecord>& records = recording.dump.records;
    for (auto record = records.rbegin();
         record != records.rend() && last.size() < recording.timelines.size(); ++record) {
        if (recording.Passes(*record))
            last.try_emplace(record->threadId, &*record);
    }
    return last;
}

} // namespace

std::string EndReport::Compose(const Recording& recording)
{
    EndReport report(recording);
    report.AddCrash();
    report.AddThreads();
    report.AddErrors();
    return report.text;
}

void EndReport::AddLine(std::int64_t time, const std::string& what)
{
    text +=
        TextForms::AlignRight(TextForms::Seconds(time), TextForms::timeWidth) + "  " + what + "\n";
}

void EndReport::AddCrash()
{
    if (const std::optional<Crash>& crash = recording.dump.crash)
        text += "\nCrashed: " + Description::Thread(crash->threadId, recording) + ", " +
                crash->what + "\n";
}

void EndReport::AddThreads()
{
    LastRecords last = LastRecordsOf(recording);
    const std::optional<Crash>& crash = recording.dump.crash;
    const auto rank = [&](const Timeline* timeline) {
        const DumpRecord* const record = last[timeline->threadId];
        const bool hasCrashed = crash && crash->threadId == timeline->threadId;
        return std::make_pair(!hasCrashed, record ? -record->time : 0);
    };
    std::vector<const Timeline*> threads;
    std::vector<std::int32_t> idle;
    for (const Timeline& timeline : recording.timelines) {
        const auto isOpen = [](const TimelineEntry& entry) { return entry.isOpen; };
        if (std::any_of(timeline.entries.begin(), timeline.entries.end(), isOpen))
            threads.push_back(&timeline);
        else if (!recording.dump.HasEnded(timeline.threadId))
            idle.push_back(timeline.threadId);
    }
    std::stable_sort(
        threads.begin(), threads.end(),
        [&](const Timeline* one, const Timeline* other) { return rank(one) < rank(other); });

    text += "\nAt the end\n";
    for (std::size_t i = 0; i < std::min(threads.size(), mostThreads); ++i)
        AddThread(*threads[i], last[threads[i]->threadId]);
    if (threads.size() > mostThreads)
        text += "  and " + TextForms::Count(threads.size() - mostThreads, "thread") +
                " more in scopes; --tree shows them\n";
    AddIdle(idle);
    if (threads.empty() && idle.empty())
        text += "  no thread was left of those that recorded\n";
}

void EndReport::AddThread(const Timeline& timeline, const DumpRecord* last)
{
    const bool hasEnded = recording.dump.HasEnded(timeline.threadId);
    text += "  " + Description::Thread(timeline.threadId, recording) +
            (hasEnded ? ", has ended" : "") + "\n";
    std::vector<const TimelineEntry*> open;
    for (const TimelineEntry& entry : timeline.entries) {
        if (entry.isOpen)
            open.push_back(&entry);
    }
    const std::size_t left = open.size() - std::min(open.size(), mostScopes);
    if (left != 0)
        text += std::string(TextForms::timeWidth + 2, ' ') + "in " +
                TextForms::Count(left, "scope") + " more, and\n";
    const std::int64_t end = recording.dump.End();
    for (std::size_t i = left; i < open.size(); ++i)
        AddLine(end - open[i]->begin,
                "in " + Description::PlaceAndObject(*open[i]->record, recording.dump.names));
    if (last)
        AddLine(end - last->time, "since " + Description::Whole(*last, recording.dump.names));
}

void EndReport::AddIdle(const std::vector<std::int32_t>& idle)
{
    if (idle.empty())
        return;
    text += "  in no scope: ";
    for (std::size_t i = 0; i < std::min(idle.size(), mostThreads); ++i)
        text += (i == 0 ? "" : ", ") + Description::Thread(idle[i], recording);
    if (idle.size() > mostThreads)
        text += " and " + std::to_string(idle.size() - mostThreads) + " more";
    text += "\n";
}

void EndReport::AddErrors()
{
    std::vector<const DumpRecord*> errors;
    for (const DumpRecord* error : recording.errors.Undismissed()) {
        if (recording.Passes(*error))
            errors.push_back(error);
    }
    if (errors.empty())
        return;
    text += "\nErrors raised and not dismissed";
    if (errors.size() > mostErrors)
        text += ", the latest of " + std::to_string(errors.size());
    text += "\n";
    for (std::size_t i = errors.size() - std::min(errors.size(), mostErrors); i < errors.size();
         ++i)
        AddError(*errors[i]);
}

void EndReport::AddError(const DumpRecord& error)
{
    AddLine(error.time, Description::Whole(error, recording.dump.names) + " on " +
                            Description::Thread(error.threadId, recording));
    for (const TimelineEntry* scope : ScopesAround(error, recording.timelines))
        text += std::string(TextForms::timeWidth + 4, ' ') + "in " +
                Description::PlaceAndObject(*scope->record, recording.dump.names) + "\n";
}
