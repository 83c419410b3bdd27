#include "viewer/showing/text/Summary.h"

#include "viewer/forms/TextForms.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/text/Description.h"

namespace
{

std::string Number(std::size_t number)
{
    return TextForms::AlignRight(std::to_string(number), 9);
}

std::string Time(std::int64_t time)
{
    return TextForms::AlignRight(TextForms::Seconds(time), 13);
}

} // namespace

std::string Summary::Compose(const Dump& dump, const RecordFilter& filter)
{
    Summary summary(dump);
    for (const DumpRecord& record : dump.records) {
        if (filter.Passes(record, dump.names) && filter.IsInTime(record.time, record.time))
            summary.Count(record);
    }
    summary.AddSpan();
    summary.AddFindings();
    summary.AddThreads();
    summary.AddEvents();
    summary.AddErrors();
    return summary.text;
}

void Summary::Count(const DumpRecord& record)
{
    ThreadSpan& thread = SpanOf(record);
    ++thread.records;
    thread.end = record.time;
    events.Add(record);
    if (EventKind::IsError(record.kind))
        errors.push_back(&record);
    ++passed;
}

Summary::ThreadSpan& Summary::SpanOf(const DumpRecord& record)
{
    const auto [place, isNew] = threadPlaces.try_emplace(record.threadId, threads.size());
    if (isNew)
        threads.push_back({record.threadId, 0, record.time, record.time});
    return threads[place->second];
}

void Summary::AddHeading(const std::string& heading)
{
    text += "\n" + heading + "\n";
}

void Summary::AddSpan()
{
    const std::size_t all = dump.records.size();
    text += std::to_string(all) + (all == 1 ? " record in " : " records in ") +
            TextForms::Seconds(dump.End() - dump.Begin()) + " seconds";
    text += passed == all ? "\n" : ", passing the filters: " + std::to_string(passed) + "\n";
    if (dump.start) {
        AddHeading("      Seconds  Wall clock where the dump was written");
        AddWallClock(dump.reference, "start of the recorder");
        AddWallClock(dump.Begin(), "first record");
        AddWallClock(dump.End(), "last record");
    }
}

void Summary::AddWallClock(std::int64_t time, const std::string& what)
{
    text += Time(time) + "  " + dump.WallClockAt(time) + "  " + what + "\n";
}

void Summary::AddFindings()
{
    const std::vector<std::string> sentences = dump.findings.Sentences();
    if (!sentences.empty())
        AddHeading("Findings");
    for (const std::string& sentence : sentences)
        text += "  " + sentence + "\n";
}

void Summary::AddThreads()
{
    AddHeading("  Records         from           to  Thread");
    for (const ThreadSpan& thread : threads)
        text += Number(thread.records) + Time(thread.begin) + Time(thread.end) + "  " +
                Description::Thread(thread.threadId, dump.names) + "\n";
}

void Summary::AddEvents()
{
    AddHeading("   Events  Class");
    for (const EventCounts::OfClass& counts : events.ByClass(dump.names)) {
        text += Number(counts.total) + "  " + counts.name;
        std::string separator = ": ";
        for (const auto& [kind, count] : counts.byKind) {
            text += separator + std::string(kind) + " " + std::to_string(count);
            separator = ", ";
        }
        text += "\n";
    }
}

void Summary::AddErrors()
{
    AddHeading(errors.empty() ? "No errors" : "      Seconds  Errors raised and dismissed");
    for (const DumpRecord* error : errors)
        text += Time(error->time) + "  " + Description::Whole(*error, dump.names) + " on " +
                Description::Thread(error->threadId, dump.names) + "\n";
}
