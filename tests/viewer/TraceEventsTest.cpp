#include "viewer/showing/trace/TraceEvents.h"

#include "fuzz/TraceRules.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/model/records/EventKind.h"
#include "viewer/showing/page/TimelinePage.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

std::string TraceOf(Dump dump)
{
    return TraceEvents::Compose(RecordingsOf(std::move(dump)));
}

} // namespace

TEST(TraceEvents, OfASmallDump)
{
    const std::string text = TraceOf(ReadText(sampleDump));
    EXPECT_EQ("", BrokenTraceRule(text, 9));
    const std::pair<const char*, const char*> parts[] = {
        {"/otherData",
         R"({"source": "some.log", "records": 9, "begin": 0, "end": 12345901, "origin": 0,
             "start": -250000, "wallClock": "2026-11-15 15:12:20.532", "findings": []})"},
        {"/traceEvents/0",
         R"({"name": "thread_name", "ph": "M", "pid": 1, "tid": 36, "args": {"name": "Host"}})"},
        {"/traceEvents/2",
         R"({"name": "Station.Serve", "ph": "X", "cat": "scope", "ts": 100, "dur": 12345801,
             "pid": 1, "tid": 36,
             "args": {"depth": 0, "param1": 0, "param2": 5, "object": "0x000000001D2C5A40",
                      "objectName": "a (b) in_class c at d"}})"},
        {"/traceEvents/3/name", R"("Pump.Drain")"},
        {"/traceEvents/4",
         R"({"name": "Root_error RunsDry", "ph": "i", "s": "t", "cat": "error", "ts": 310,
             "pid": 1, "tid": 36,
             "args": {"depth": 2, "place": "Pump.Drain", "code": "RunsDry", "line": 38,
                      "object": "0xFFFFFFFFFFFFFFF0", "dismissed": 400}})"},
        {"/traceEvents/5/args/dismisses", "310"},
        {"/traceEvents/7/args/state", R"("off, in_class at")"},
        {"/traceEvents/8/name", "\"Timing_point (1, -2)\""}};
    for (const auto& [pointer, part] : parts)
        EXPECT_EQ(JsonPart(part, ""), JsonPart(text, pointer)) << pointer;
    EXPECT_ANY_THROW(JsonPart(text, "/traceEvents/9"));
}

TEST(TraceEvents, KeepTheRulesWhateverTheRecordsSay)
{
    std::minstd_rand random(1);
    const std::vector<std::string> words = {"+a", "+b", "-a", "-b", ".",  "~",
                                            "1",  "2",  "!a", "*a", "/b", "<b"};
    for (int round = 0; round < 500; ++round) {
        std::string story;
        for (auto left = random() % 40; left > 0; --left)
            story += words[random() % words.size()];
        const Dump dump = DumpOf(story);
        const std::size_t records = dump.records.size();
        ASSERT_EQ("", BrokenTraceRule(TraceOf(dump), records)) << story;
    }
}

TEST(TraceEvents, EscapeWhatJsonOrAPageWouldMistake)
{
    std::string lines = RecordLines(0, EventKind::ScopePush, "f");
    lines.replace(lines.find("(unknown)"), 9, "(</script>\"\\\xE4)");
    const std::string text = TraceOf(ReadText(lines));
    const std::string page = TimelinePage::Compose(text);
    EXPECT_EQ(std::string::npos, page.find("</script>\\\""));
    EXPECT_NE(std::string::npos, page.find("\\u003c/script>\\\""));
    EXPECT_EQ("\"</script>\\\"\\\\\xC3\xA4\"", JsonPart(text, "/traceEvents/1/args/objectName"));
}

TEST(TraceEvents, BeginWithZeroAtTheLatest)
{
    std::string lines = RecordLines(0, EventKind::ScopePush, "f");
    lines.replace(lines.find("0.000000"), 8, "-1.750000");
    const std::string text = TraceOf(ReadText(lines + RecordLines(1, EventKind::ScopePop, "f")));
    EXPECT_EQ("", BrokenTraceRule(text, 2));
    EXPECT_EQ("250001", JsonPart(text, "/traceEvents/1/dur"));
}
