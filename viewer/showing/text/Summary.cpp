#include "viewer/showing/text/Summary.h"

#include "viewer/forms/TextForms.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/model/statistics/LongestScopes.h"
#include "viewer/model/statistics/ScopeStatistics.h"
#include "viewer/showing/text/Description.h"
#include "viewer/showing/text/EndReport.h"
#include "viewer/showing/text/StatisticsTable.h"

#include <algorithm>

namespace
{

constexpr std::size_t mostFunctions = 8;
constexpr std::size_t mostScopes = 5;
constexpr std::size_t mostErrors = 12;

std::string Number(std::size_t number)
{
    return TextForms::AlignRight(std::to_string(number), 9);
}

std::string Time(std::int64_t time)
{
    return TextForms::AlignRight(TextForms::Seconds(time), 13);
}

} // namespace

std::string Summary::Compose(const Recordings& recordings)
{
    Summary summary(recordings);
    summary.CountAll();
    summary.AddSpan();
    for (const Recording& recording : recordings) {
        summary.text += EndReport::Compose(recording);
        summary.AddFindings(recording);
    }
    summary.AddErrors();
    summary.AddFunctions();
    summary.AddLongest();
    summary.AddThreads();
    summary.AddEvents();
    return summary.text;
}

void Summary::CountAll()
{
    for (const Recording& recording : recordings) {
        records += recording.dump.records.size();
        std::unordered_map<std::int32_t, std::size_t> places;
        for (const DumpRecord& record : recording.dump.records) {
            if (!recording.Passes(record))
                continue;
            const auto [place, isNew] = places.try_emplace(record.threadId, threads.size());
            if (isNew)
                threads.push_back({&recording, record.threadId, 0, record.time, record.time});
            ++threads[place->second].records;
            threads[place->second].end = record.time;
            Count(recording, record);
        }
        events.Name(recording.dump.names);
    }
}

void Summary::Count(const Recording& recording, const DumpRecord& record)
{
    events.Add(record);
    if (ErrorFates::IsRaised(record.kind))
        CountError(recording, record);
    ++passed;
}

void Summary::CountError(const Recording& recording, const DumpRecord& error)
{
    const std::string what = recording.dump.names.Error(error);
    ErrorCount& count = errors[what];
    ++count.raised;
    count.dismissed += recording.errors.PartnerOf(error) != nullptr;
    count.latest = std::max(count.latest, error.time);
    count.what = what;
}

void Summary::AddHeading(const std::string& heading)
{
    text += "\n" + heading + "\n";
}

void Summary::AddSpan()
{
    std::int64_t begin = std::numeric_limits<std::int64_t>::max();
    std::int64_t end = std::numeric_limits<std::int64_t>::min();
    for (const Recording& recording : recordings) {
        begin = std::min(begin, recording.dump.Begin());
        end = std::max(end, recording.dump.End());
    }
    text +=
        TextForms::Count(records, "record") + " in " + TextForms::Seconds(end - begin) + " seconds";
    text += passed == records ? "\n" : ", passing the filters: " + std::to_string(passed) + "\n";
    for (const Recording& recording : recordings)
        AddWallClocks(recording);
}

void Summary::AddWallClocks(const Recording& recording)
{
    const Dump& dump = recording.dump;
    if (!recording.label.empty())
        text += recording.source + ", " + TextForms::Count(dump.records.size(), "record") + "\n";
    if (!dump.process.empty())
        text += "  recorder of " + dump.recorder + " in " + dump.process + "\n";
    if (!dump.start)
        return;
    const auto add = [&](const std::string& what, std::int64_t time) {
        text += "  " + what + dump.WallClockAt(time) + Time(time) + "\n";
    };
    add("recorder started  ", dump.reference);
    add("first record      ", dump.Begin());
    add("last record       ", dump.End());
}

void Summary::AddFindings(const Recording& recording)
{
    const std::vector<std::string> sentences = recording.dump.findings.Sentences();
    if (!sentences.empty())
        AddHeading("Findings");
    for (const std::string& sentence : sentences)
        text += "  " + sentence + "\n";
}

void Summary::AddErrors()
{
    std::vector<const ErrorCount*> rows;
    rows.reserve(errors.size());
    for (const auto& [what, count] : errors)
        rows.push_back(&count);
    std::stable_sort(rows.begin(), rows.end(), [](const ErrorCount* one, const ErrorCount* other) {
        return one->raised > other->raised;
    });
    AddHeading(rows.empty() ? "No errors" : "   Raised  Dismissed       latest  Error");
    for (std::size_t i = 0; i < std::min(rows.size(), mostErrors); ++i)
        text += Number(rows[i]->raised) + "  " + Number(rows[i]->dismissed) +
                Time(rows[i]->latest) + "  " + rows[i]->what + "\n";
    if (rows.size() > mostErrors)
        text +=
            "      and " + std::to_string(rows.size() - mostErrors) + " more; --list shows all\n";
}

void Summary::AddFunctions()
{
    const auto rows = ScopeStatistics::Of(recordings, ScopeStatistics::By::Function);
    if (!rows.empty())
        text += "\n" + StatisticsTable::ComposeShort(rows, mostFunctions);
}

void Summary::AddLongest()
{
    const std::vector<LongestScopes::Scope> longest = LongestScopes::Of(recordings, mostScopes);
    if (longest.empty())
        return;
    AddHeading("         Took         from  Longest scopes");
    for (const auto& [recording, scope] : longest)
        text += Time(scope->Duration()) + Time(scope->begin) + "  " +
                Description::PlaceAndObject(*scope->record, recording->dump.names) + " on " +
                Description::Thread(scope->record->threadId, *recording) + "\n";
}

void Summary::AddThreads()
{
    AddHeading("  Records         from           to  Thread");
    for (const ThreadSpan& thread : threads)
        text += Number(thread.records) + Time(thread.begin) + Time(thread.end) + "  " +
                Description::Thread(thread.threadId, *thread.recording) + "\n";
}

void Summary::AddEvents()
{
    AddHeading("   Events  Class");
    for (const EventCounts::OfClass& counts : events.ByClass()) {
        text += Number(counts.total) + "  " + counts.name;
        std::string separator = ": ";
        for (const auto& [kind, count] : counts.byKind) {
            text += separator + std::string(kind) + " " + std::to_string(count);
            separator = ", ";
        }
        text += "\n";
    }
}
