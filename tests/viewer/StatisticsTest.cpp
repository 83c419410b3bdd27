#include "viewer/model/statistics/ScopeStatistics.h"

#include "tests/viewer/SampleDump.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/model/statistics/Comparison.h"
#include "viewer/showing/data/StatisticsData.h"
#include "viewer/showing/text/DiffReport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <sstream>

namespace
{

/// A scope as the raw numbers of a thread tell it.
struct Span {
    int function;
    long long begin;
    long long end = 0;
    bool isWhole = false;
    std::vector<std::size_t> inside = {}; // directly
};

typedef std::map<std::string, std::vector<long long>> Columns;

/// The spans of one thread. A leaving that fits none of those open is of one entered before the
/// dump if none is open, and nothing otherwise.
std::vector<Span> SpansOf(const std::vector<std::array<long long, 3>>& events, long long dumpEnd)
{
    std::vector<Span> spans;
    std::vector<std::size_t> open;
    const auto close = [&](long long time, bool isWhole) {
        spans[open.back()].end = time;
        spans[open.back()].isWhole = isWhole;
        open.pop_back();
    };
    for (const auto& [time, kind, function] : events) {
        const auto isOfIt = [&, of = function](std::size_t span) {
            return spans[span].function == of;
        };
        if (kind == EventKind::ScopePush) {
            if (!open.empty())
                spans[open.back()].inside.push_back(spans.size());
            open.push_back(spans.size());
            spans.push_back({static_cast<int>(function), time});
        } else if (std::any_of(open.begin(), open.end(), isOfIt)) {
            while (!isOfIt(open.back()))
                close(time, false);
            close(time, true);
        } else if (open.empty()) {
            spans.push_back({static_cast<int>(function), 0, time});
        }
    }
    while (!open.empty())
        close(dumpEnd, false);
    return spans;
}

void Count(const std::vector<Span>& spans, std::size_t at, std::vector<int> around,
           std::map<int, Columns>& functions)
{
    const Span& span = spans[at];
    Columns& columns = functions[span.function];
    columns["count"].push_back(1);
    long long self = span.end - span.begin;
    for (const std::size_t inner : span.inside)
        self -= spans[inner].end - spans[inner].begin;
    if (span.isWhole) {
        columns["durations"].push_back(span.end - span.begin);
        columns["self"].push_back(self);
        if (std::count(around.begin(), around.end(), span.function) == 0)
            columns["total"].push_back(span.end - span.begin);
        around.push_back(span.function);
    }
    for (const std::size_t inner : span.inside)
        Count(spans, inner, around, functions);
}

/// The statistics of a dump as CSV, sorted by name, computed from the numbers of its text alone.
std::string CsvOf(const std::string& text)
{
    std::map<int, std::vector<std::array<long long, 3>>> threads;
    std::istringstream lines(text);
    long long end = 0;
    for (std::string line; std::getline(lines, line);) {
        long long seconds, micros, kind, function, thread;
        if (std::sscanf(line.c_str(), "    %lld.%lld, %lld, %*d, %*d, %*d, %lld, %*d, %lld",
                        &seconds, &micros, &kind, &function, &thread) != 5)
            continue;
        end = std::max(end, seconds * 1000000 + micros);
        if (kind == EventKind::ScopePush || kind == EventKind::ScopePop)
            threads[static_cast<int>(thread)].push_back(
                {seconds * 1000000 + micros, kind, function});
    }
    std::map<int, Columns> functions;
    for (const auto& [thread, events] : threads) {
        const std::vector<Span> spans = SpansOf(events, end);
        std::vector<bool> isInside(spans.size());
        for (const Span& span : spans)
            for (const std::size_t inner : span.inside)
                isInside[inner] = true;
        for (std::size_t at = 0; at < spans.size(); ++at)
            if (!isInside[at])
                Count(spans, at, {}, functions);
    }
    std::ostringstream csv;
    csv << "name,count,cut,total,self,median,p99,slowest,handed,wait\n";
    for (auto& [function, columns] : functions) {
        const auto sum = [&, &numbers = columns](const char* column) {
            long long all = 0;
            for (const long long value : numbers[column])
                all += value;
            return all;
        };
        std::vector<long long>& durations = columns["durations"];
        std::sort(durations.begin(), durations.end());
        const auto rank = [&](double share) {
            const double place =
                std::max(1.0, std::ceil(share * static_cast<double>(durations.size())));
            return durations.empty() ? 0 : durations[static_cast<std::size_t>(place) - 1];
        };
        csv << "\"C." << static_cast<char>(function) << "\"," << sum("count") << ','
            << sum("count") - static_cast<long long>(durations.size()) << ',' << sum("total") << ','
            << sum("self") << ',' << rank(0.5) << ',' << rank(0.99) << ',' << rank(1) << ",0,0\n";
    }
    return csv.str();
}

std::string StatisticsOf(const std::string& text)
{
    auto rows = ScopeStatistics::Of(RecordingsOf(text), ScopeStatistics::By::Function);
    ScopeStatistics::Sort(rows, "name");
    return StatisticsData::ComposeCsv(rows);
}

/// Calls of f that take about so long.
std::string CallsOf(const char* f, int count, int microseconds, std::minstd_rand& random)
{
    std::string text;
    std::int64_t time = 0;
    for (int i = 0; i < count; ++i) {
        text += RecordLines(time += 10, EventKind::ScopePush, f);
        time += microseconds + static_cast<int>(random() % 20);
        text += RecordLines(time, EventKind::ScopePop, f);
    }
    return text;
}

} // namespace

// Threads that run in and out of functions, recursively too; the front is lost, as a ring that has
// wrapped loses it, and so are records here and there.
TEST(ScopeStatistics, EqualWhatTheRawNumbersSayOfWrappedAndTornDumps)
{
    std::minstd_rand random(5);
    for (int round = 0; round < 300; ++round) {
        std::map<int, std::string> open;
        std::vector<std::string> records;
        std::int64_t time = 0;
        for (auto left = random() % 200; left > 0; --left) {
            const int thread = static_cast<int>(random() % 3 + 1);
            std::string& functions = open[thread];
            const bool leaves = !functions.empty() && random() % 2 == 0;
            const char function = leaves ? functions.back() : static_cast<char>('a' + random() % 4);
            leaves ? functions.pop_back() : functions.push_back(function);
            time += static_cast<int>(random() % 1000);
            records.push_back(RecordLines(time, leaves ? EventKind::ScopePop : EventKind::ScopePush,
                                          {function}, thread));
        }
        std::string text;
        const bool isTorn = random() % 2 == 0;
        for (std::size_t i = random() % (records.size() + 1); i < records.size(); ++i)
            text += isTorn && random() % 20 == 0 ? "" : records[i];
        if (!text.empty()) {
            ASSERT_EQ(CsvOf(text), StatisticsOf(text)) << text;
        }
    }
}

TEST(Comparison, TellsWhatIsSlowerFromNoise)
{
    std::minstd_rand random(1);
    const std::string before = CallsOf("same", 200, 100, random) +
                               CallsOf("slow", 200, 100, random) + CallsOf("old", 3, 5, random);
    const std::string after = CallsOf("same", 220, 100, random) +
                              CallsOf("slow", 210, 120, random) +
                              RecordLines(0, EventKind::RootError, "slow");
    const auto rows =
        Comparison::Of(ScopeStatistics::Of(RecordingsOf(before), ScopeStatistics::By::Function),
                       ScopeStatistics::Of(RecordingsOf(after), ScopeStatistics::By::Function));
    std::map<std::string, Comparison::Verdict> verdicts;
    for (const Comparison::Row& row : rows)
        verdicts[row.name] = row.verdict;
    EXPECT_EQ(Comparison::Verdict::Slower, verdicts["C.slow"]);
    EXPECT_EQ(Comparison::Verdict::Gone, verdicts["C.old"]);
    EXPECT_TRUE(verdicts["C.same"] == Comparison::Verdict::Noise ||
                verdicts["C.same"] == Comparison::Verdict::Same);
    const std::string report = DiffReport::Compose(RecordingsOf(before), RecordingsOf(after));
    EXPECT_NE(std::string::npos, report.find("new  no code at C.slow")) << report;
}
