#include "viewer/model/statistics/ScopeStatistics.h"

#include "tests/support/Regex.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/data/StatisticsData.h"
#include "viewer/showing/text/DiffReport.h"
#include "viewer/showing/text/StatisticsTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
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

struct Function {
    std::size_t count = 0;
    long long self = 0, total = 0;
    std::vector<long long> durations;
};

constexpr std::size_t none = std::string::npos;

/// The spans of one thread. A leaving that fits none of those open is of one entered before the
/// dump if none is open, and nothing otherwise.
std::vector<Span> SpansOf(const std::vector<DumpRecord>& records, long long dumpEnd)
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
    for (const DumpRecord& record : records) {
        std::size_t left = open;
        while (left != none && spans[left].function != record.pointId)
            left = spans[left].around;
        if (record.kind == EventKind::ScopePush) {
            spans.push_back({record.pointId, record.time, open});
            open = spans.size() - 1;
        } else if (left != none) {
            while (open != left)
                close(record.time, false);
            close(record.time, true);
        } else if (open == none) {
            spans.push_back({record.pointId, 0, none, record.time});
        }
    }
    while (open != none)
        close(dumpEnd, false);
    return spans;
}

void Count(const std::vector<Span>& spans, std::map<int, Function>& functions)
{
    for (const Span& span : spans) {
        Function& function = functions[span.function];
        ++function.count;
        if (!span.isWhole)
            continue;
        bool isInside = false;
        for (std::size_t at = span.around; at != none; at = spans[at].around)
            isInside |= spans[at].isWhole && spans[at].function == span.function;
        function.durations.push_back(span.end - span.begin);
        function.self += span.end - span.begin - span.inside;
        function.total += isInside ? 0 : span.end - span.begin;
    }
}

/// The statistics of a dump of nothing but scopes as CSV, sorted by name, computed from its
/// numbers.
std::string CsvOf(const Dump& dump)
{
    std::map<std::int32_t, std::vector<DumpRecord>> threads;
    for (const DumpRecord& record : dump.records)
        threads[record.threadId].push_back(record);
    std::map<int, Function> functions;
    for (const auto& thread : threads)
        Count(SpansOf(thread.second, dump.End()), functions);
    std::ostringstream csv;
    csv << "name,count,cut,total,self,median,p99,slowest,handed,wait\n";
    for (auto& [name, function] : functions) {
        std::vector<long long>& durations = function.durations;
        std::sort(durations.begin(), durations.end());
        csv << "\"C." << static_cast<char>(name) << "\"," << function.count << ','
            << function.count - durations.size() << ',' << function.total << ',' << function.self;
        for (const double share : {0.5, 0.99, 1.0}) {
            const double rank = std::ceil(share * static_cast<double>(durations.size()));
            csv << ',' << (durations.empty() ? 0 : durations[static_cast<std::size_t>(rank) - 1]);
        }
        csv << ",0,0\n";
    }
    return csv.str();
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
            auto rows = ScopeStatistics::Of(RecordingsOf(text), ScopeStatistics::By::Function);
            ScopeStatistics::Sort(rows, "name");
            ASSERT_EQ(CsvOf(ReadText(text)), StatisticsData::ComposeCsv(rows)) << text;
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
    const std::string table = StatisticsTable::Compose(rows);
    EXPECT_NE(std::string::npos, table.find("   0.000006  Z.Execute\n")) << table;
    rows[0].name = "a\"b";
    EXPECT_NE(std::string::npos, StatisticsData::ComposeCsv(rows).find("\n\"a\"\"b\",2,"));
    EXPECT_EQ("no object", ScopeStatistics::Of(recordings, ScopeStatistics::By::Object)[0].name);
}

TEST(Comparison, TellsWhatIsSlowerFromNoise)
{
    // How often and about how long it was called before and after, and how much that varies.
    const std::tuple<const char*, int, int, int, int, unsigned, std::string> rows[] = {
        {"same", 200, 100, 220, 100, 20, "(noise|same)"},
        {"slow", 200, 100, 210, 120, 20, "\\+\\d+ %"},
        {"fast", 200, 120, 210, 100, 20, " -\\d+ %"},
        {"tiny", 200, 1000, 200, 1020, 20, "noise"},
        {"old", 3, 5, 0, 0, 20, "gone"},
        {"new", 0, 0, 3, 5, 20, "new"},
        {"few", 7, 5, 8, 5, 20, "too few"},
        {"less", 8, 5, 7, 5, 20, "too few"},
        {"even", 20, 5, 20, 5, 1, "same"},
    };
    std::minstd_rand random(1);
    std::string before = RecordLines(0, EventKind::RootError, "old");
    std::string after = RecordLines(0, EventKind::RootError, "new");
    for (const auto& [function, callsBefore, timeBefore, calls, time, spread, told] : rows) {
        before += CallsOf(function, callsBefore, timeBefore, random, spread);
        after += CallsOf(function, calls, time, random, spread);
        after += RecordLines(0, EventKind::RootError, "a", calls == 220 ? 8 : 7);
    }
    for (const char* error : {"a", "b"})
        before += RecordLines(0, EventKind::RootError, error);
    const Recordings ofThread7 = RecordingsOf(ReadText(after), {"7", "", "", {}, 0, 1 << 30});
    const std::string report = DiffReport::Compose(RecordingsOf(before), ofThread7);
    for (const auto& [function, callsBefore, timeBefore, calls, time, spread, told] : rows)
        EXPECT_NE("", Matches(report, told + "  C." + function + "\n")) << report;
    EXPECT_NE("", Matches(report, "slow(.|\n)*new(.|\n)*less(.|\n)*"
                                  " +1 +0  gone  no code at C.b\n"
                                  " +0 +1 +new  no code at C.new\n"
                                  " +1 +0  gone  no code at C.old\n"
                                  " +1 +8 +no code at C.a\n"))
        << report;
}
