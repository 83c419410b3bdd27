#include "viewer/model/flows/Flows.h"

#include "fuzz/TraceRules.h"
#include "tests/support/Regex.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/model/Merging.h"
#include "viewer/showing/text/EndReport.h"
#include "viewer/showing/text/RecordList.h"
#include "viewer/showing/text/Summary.h"
#include "viewer/showing/trace/TraceEvents.h"

#include <gtest/gtest.h>

namespace
{

/// A story with short words for what queues are made of.
Dump StoryOf(std::string story)
{
    const std::pair<const char*, const char*> words[] = {
        {"call", "MCommandProcessor.ExecuteSynchronously"},
        {"face", "varek.Call"},
        {"execute", "Command.Execute"},
        {"schedule", "MDesyncEventScheduler.ScheduleDesyncEvent"},
        {"burst", "MDesyncEventScheduler.OnSchedulerEvent"},
        {"fire", "Event.Fire"}};
    for (const auto& [word, place] : words)
        story = Replaced(story, word, place);
    return DumpOfPlaces(story);
}

/// "1>3 2>5": when what was handed over was, and when it arrived.
std::string FlowsOf(const std::string& story)
{
    std::map<std::int64_t, std::int64_t> arrivals;
    const Recordings recordings = RecordingsOf(StoryOf(story));
    EXPECT_EQ("",
              BrokenTraceRule(TraceEvents::Compose(recordings), recordings[0].dump.records.size()));
    for (const Flow& flow : recordings[0].flows)
        arrivals[flow.from.begin] = flow.to.begin;
    std::string text;
    for (const auto& [from, to] : arrivals)
        text += (text.empty() ? "" : " ") + std::to_string(from) + ">" + std::to_string(to);
    return text;
}

/// When the errors were raised that nothing dismissed.
std::string UndismissedIn(const std::string& story)
{
    std::string text;
    const Recordings recordings = RecordingsOf(StoryOf(story));
    for (const DumpRecord* error : recordings[0].errors.Undismissed())
        text += (text.empty() ? "" : " ") + std::to_string(error->time);
    return text;
}

} // namespace

TEST(Flows, GoFromCallsToTheirCommandsAndFromSchedulingToFiringInOrder)
{
    const std::pair<const char*, const char*> stories[] = {
        {"0>1", "1+call 2+execute 2-execute 1-call 3+execute 3-execute"},
        {"0>1", "1+face 2+execute 2-execute 1-face"},
        {"0>2 1>4", "1+call 2+call 3+execute 3-execute 3+execute 3-execute 2-call 1-call"},
        // The second wakes first; a command that nobody waits for runs in front of the call's.
        {"0>2 1>5", "1+call 2+call 3+execute 3-execute 1-call 3+execute 3-execute 2-call"},
        {"0>3", "1+call 3+execute 3-execute 3+execute 3-execute 1-call"},
        {"0>3", "1+call 2+execute 2-execute 3+execute 3-execute 1-call"},
        {"0>3", "1+call 3+execute 3-execute 2+execute 2-execute 1-call"},
        // Still at it at the end; an Execute inside is a function like any other.
        {"0>1", "1+call 3+execute 3+execute 3-execute"},
        {"", "3+execute 3-execute 1+call 1-call 1+call 1+execute 1-execute 1-call"},
        // What other functions hand over, and marks.
        {"", "1+varek.Post 1+MCommandProcessor.Abort 2+execute 2.execute 1.call 2-execute"},
        {"0>3 1>5", "1.schedule 2.schedule 3+burst 3+fire 3-fire 3+fire 3.fire 3-fire 3-burst"},
        {"0>2", "1.schedule 3+burst 3.fire 3.fire 3-burst"},
        {"0>4 1>5 2>6", "1+schedule 1.schedule 2.schedule 3+burst 3.fire 3.Other.Fire 3+fire"},
        // Outside of bursts, on another thread, in other functions, before all that was scheduled.
        {"0>3", "1.schedule 3.fire 3+burst 3.fire 4.fire 3-burst 3.fire"},
        {"", "1.MDesyncEventScheduler.Stop 3+burst 3.fire 3.burst 3-burst 1!schedule 1.schedule"},
        // What left no record of its firing is over when the next burst begins.
        {"0>2", "1.schedule 3+burst 3+fire 3-fire 3.fire 3-burst 3+burst 3-burst"},
        {"4>6", "1.schedule 3+burst 3.Event.Other 3-burst 1.schedule 3+burst 3.fire 3-burst"},
    };
    for (const auto& [flows, story] : stories)
        EXPECT_EQ(flows, FlowsOf(story)) << story;
}

TEST(Flows, PassAFilterThatBothTheirEndsPass)
{
    const Dump story = StoryOf("1+call 2+execute 1-call");
    const std::tuple<const char*, int, std::size_t> filters[] = {
        {"", 1, 1}, {"", 0, 0}, {"1", 1, 0}, {"2", 1, 0}};
    for (const auto& [thread, to, flows] : filters)
        EXPECT_EQ(flows, RecordingsOf(story, {thread, "", "", {}, 0, to})[0].flows.size());
}

TEST(ErrorFates, FollowErrorsThroughChainsAndCallsToTheirDismissal)
{
    const std::pair<const char*, const char*> stories[] = {
        {"", "1+A.a 1!A.b 1*A.a"},
        {"1", "1+A.a 1!A.b 2*A.a"},
        {"", "1+A.a 1+A.b 1!A.b 1/A.b 1-A.b 1^A.a 1*A.a"}, // one chain
        {"1", "1+A.a 1!A.b 1+A.b 1!A.b 1*A.a"},            // the thread went on between
        {"", "1+call 2+execute 2!A.b 2-execute 1-call 1*A.a"},
        // To the caller goes what was raised in the command, and from its chain.
        {"0 5", "2!A.b 1+call 2+execute 2!A.b 2-execute 2!A.b 1-call 1*A.a"},
        {"2", "1+call 2+execute 2!A.b 2-execute 1-call 2!A.b 2*A.a"},
    };
    for (const auto& [errors, story] : stories)
        EXPECT_EQ(errors, UndismissedIn(story)) << story;
}

TEST(EndReport, TellsWhereEachThreadWasAndWhatFailed)
{
    Dump dump =
        DumpOfPlaces("1+Pump.Drain 2+Valve.Turn 1+Pump.Fill 2!Valve.Turn 3+A.a 3-A.a 1<Pump.Fill");
    dump.crash = Crash{2, "access violation"};
    EXPECT_EQ(R"(
Crashed: 2, access violation

At the end
  2
     0.000005  in Valve.Turn
     0.000003  since Root_error at Valve.Turn, line 0
  1
     0.000006  in Pump.Drain
     0.000004  in Pump.Fill
     0.000000  since Log_module_added
  in no scope: 3

Errors raised and not dismissed
     0.000003  Root_error at Valve.Turn, line 0 on 2
                 in Valve.Turn
)",
              EndReport::Compose(RecordingsOf(std::move(dump))[0]));
    // Filtered by a time in which a thread records nothing.
    const Recordings late = RecordingsOf(DumpOfPlaces("1+A.a 1!A.a 2.B.b"), {"", "", "", {}, 2, 9});
    EXPECT_EQ("\nAt the end\n  1\n     0.000002  in A.a\n  in no scope: 2\n",
              EndReport::Compose(late[0]));
}

TEST(Merging, PutsDumpsOnOneAxisByTheirWallClocks)
{
    std::vector<Dump> dumps;
    for (const char* second : {"02", "00", "01"})
        dumps.push_back(ReadText("%% Reference time: -1.000000 is approximately 500ms past "
                                 "Mon Feb 28 10:00:" +
                                 std::string(second) + " 2028\n" + RecordLines(0, -1, second)));
    const Recordings merged = Merging::Merge(dumps, {"c.log", "a.log", "b.log"});
    EXPECT_EQ("     0.000000  2028-02-28 10:00:01.500  a.log: 7  Timing_point at C.00\n"
              "     1.000000  2028-02-28 10:00:02.500  b.log: 7  Timing_point at C.01\n"
              "     2.000000  2028-02-28 10:00:03.500  c.log: 7  Timing_point at C.02\n",
              RecordList::Compose(merged));
    EXPECT_EQ("", BrokenTraceRule(TraceEvents::Compose(merged), 3));
    EXPECT_NE(std::string::npos, Summary::Compose(merged).find("\nb.log, 1 record\n"));

    for (const Dump& known : {dumps[0], DumpOf(".")}) {
        const Recordings apart = Merging::Merge({DumpOf("."), known}, {"a.log", "b.log"});
        EXPECT_EQ(known.start.has_value(), apart[0].dump.findings.notMerged);
        EXPECT_NE(known.start.has_value(), apart[1].dump.findings.notMerged);
        EXPECT_NE(std::string::npos, RecordList::Compose(apart).find("0.000000  a.log: 7  Timing"));
    }
}
