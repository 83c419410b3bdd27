#include "viewer/model/statistics/ScopeStatistics.h"

#include "tests/viewer/SampleDump.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/data/StatisticsData.h"
#include "viewer/showing/text/DiffReport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <numeric>
#include <random>
#include <regex>
#include <sstream>

namespace
{

/// A scope as the raw numbers of a thread tell it.
struct Span {
    int function;
    long long begin;
    std::size_t around; // number of the span that it is directly inside, or none
    long long end = 0;
    bool isWhole = false;
    long long inside = 0; // time of those directly inside
};

typedef std::vector<std::array<long long, 3>> Events; // time, kind, function
typedef std::map<std::string, std::vector<long long>> Columns;

constexpr std::size_t none = std::string::npos;

/// The spans of one thread. A leaving that fits none of those open is of one entered before the
/// dump if none is open, and nothing otherwise.
std::vector<Span> SpansOf(const Events& events, long long dumpEnd)
{
    std::vector<Span> spans;
    std::size_t open = none; // the innermost
    const auto close = [&](long long time, bool isWhole) {
        Span& span = spans[open];
        span.end = time;
        span.isWhole = isWhole;
        open = span.around;
        if (open != none)
            spans[open].inside += time - span.begin;
    };
    for (const auto& [time, kind, of] : events) {
        const int function = static_cast<int>(of);
        std::size_t left = open;
        while (left != none && spans[left].function != function)
            left = spans[left].around;
        if (kind == EventKind::ScopePush) {
            spans.push_back({function, time, open});
            open = spans.size() - 1;
        } else if (left != none) {
            while (open != left)
                close(time, false);
            close(time, true);
        } else if (open == none) {
            spans.push_back({function, 0, none, time});
        }
    }
    while (open != none)
        close(dumpEnd, false);
    return spans;
}

void Count(const std::vector<Span>& spans, std::map<int, Columns>& functions)
{
    for (const Span& span : spans) {
        Columns& columns = functions[span.function];
        columns["count"].push_back(1);
        if (!span.isWhole)
            continue;
        bool isInside = false;
        for (std::size_t at = span.around; at != none; at = spans[at].around)
            isInside |= spans[at].isWhole && spans[at].function == span.function;
        columns["durations"].push_back(span.end - span.begin);
        columns["self"].push_back(span.end - span.begin - span.inside);
        columns["total"].push_back(isInside ? 0 : span.end - span.begin);
    }
}

/// The statistics of a dump as CSV, sorted by name, computed from the numbers of its text alone.
std::string CsvOf(const std::string& text)
{
    std::map<long long, Events> threads;
    std::istringstream lines(text);
    long long end = 0;
    for (std::string line; std::getline(lines, line);) {
        long long seconds, micros, kind, function, thread;
        if (std::sscanf(line.c_str(), "    %lld.%lld, %lld, %*d, %*d, %*d, %lld, %*d, %lld",
                        &seconds, &micros, &kind, &function, &thread) != 5)
            continue;
        end = std::max(end, seconds * 1000000 + micros);
        if (kind == EventKind::ScopePush || kind == EventKind::ScopePop)
            threads[thread].push_back({seconds * 1000000 + micros, kind, function});
    }
    std::map<int, Columns> functions;
    for (const auto& thread : threads)
        Count(SpansOf(thread.second, end), functions);
    std::ostringstream csv;
    csv << "name,count,cut,total,self,median,p99,slowest,handed,wait\n";
    for (auto& function : functions) {
        Columns& columns = function.second;
        std::vector<long long>& durations = columns["durations"];
        std::sort(durations.begin(), durations.end());
        const auto sum = [&](const char* column) {
            return std::accumulate(columns[column].begin(), columns[column].end(), 0LL);
        };
        const auto rank = [&](double share) {
            const double place = std::ceil(share * static_cast<double>(durations.size()));
            return durations.empty() ? 0
                                     : durations[std::max<std::size_t>(1, std::size_t(place)) - 1];
        };
        csv << "\"C." << static_cast<char>(function.first) << "\"," << columns["count"].size()
            << ',' << columns["count"].size() - durations.size() << ',' << sum("total") << ','
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
std::string CallsOf(const char* f, int count, int microseconds, std::minstd_rand& random,
                    unsigned spread = 20)
{
    std::string text;
    std::int64_t time = 0;
    for (int i = 0; i < count; ++i) {
        text += RecordLines(time += 10, EventKind::ScopePush, f);
        time += microseconds + static_cast<int>(random() % spread);
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

TEST(ScopeStatistics, SortByAnyColumnTheLargestFirst)
{
    const Recordings recordings = RecordingsOf(
        DumpOfPlaces("1+MCommandProcessor.ExecuteSynchronously 2+B.f 2-B.f 3+Z.Execute "
                     "3.Z.f 3-Z.Execute 3+Z.Execute 3-Z.Execute"));
    auto rows = ScopeStatistics::Of(recordings, ScopeStatistics::By::Function);
    for (const std::string& column : ScopeStatistics::SortColumns()) {
        ScopeStatistics::Sort(rows, column);
        EXPECT_EQ(column == "name" ? "B.f" : "Z.Execute", rows[0].name) << column;
    }
    EXPECT_EQ("no object", ScopeStatistics::Of(recordings, ScopeStatistics::By::Object)[0].name);
}

TEST(Comparison, TellsWhatIsSlowerFromNoise)
{
    std::minstd_rand random(1);
    const std::string before = CallsOf("same", 200, 100, random) +
                               CallsOf("slow", 200, 100, random) + CallsOf("old", 3, 5, random) +
                               CallsOf("few", 7, 5, random) + CallsOf("even", 20, 5, random, 1) +
                               RecordLines(0, EventKind::RootError, "old");
    const std::string after = CallsOf("same", 220, 100, random) +
                              CallsOf("slow", 210, 120, random) + CallsOf("new", 3, 5, random) +
                              CallsOf("few", 8, 5, random) + CallsOf("even", 20, 5, random, 1) +
                              RecordLines(0, EventKind::RootError, "slow");
    const std::string report = DiffReport::Compose(RecordingsOf(before), RecordingsOf(after));
    for (const char* told :
         {"   new  no code at C.slow\n", "  gone  no code at C.old\n", "  gone  C.old\n",
          "  new  C.new\n", "  too few  C.few\n", "  same  C.even\n"})
        EXPECT_NE(std::string::npos, report.find(told)) << told << report;
    EXPECT_TRUE(
        std::regex_search(report, std::regex("\\+\\d+ %  C.slow\n(.|\n)*(noise|same)  C.same\n")))
        << report;
}
