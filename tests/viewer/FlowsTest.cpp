#include "viewer/model/flows/Flows.h"

#include "fuzz/TraceRules.h"
#include "tests/viewer/SampleDump.h"
#include "viewer/model/Merging.h"
#include "viewer/showing/text/EndReport.h"
#include "viewer/showing/text/RecordList.h"
#include "viewer/showing/text/Summary.h"
#include "viewer/showing/trace/TraceEvents.h"

#include <gtest/gtest.h>

#include <regex>

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
        story = std::regex_replace(story, std::regex(word), place);
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

TEST(Flows, GoFromCallsToTheirCommandsInOrderOfArrival)
{
    EXPECT_EQ("0>1", FlowsOf("1+call 2+execute 2-execute 1-call"));
    RecordFilter caller;
    caller.thread = "1";
    EXPECT_TRUE(RecordingsOf(StoryOf("1+call 2+execute 1-call"), caller)[0].flows.empty());
    EXPECT_EQ("0>1", FlowsOf("1+face 2+execute 2-execute 1-face"));
    EXPECT_EQ("0>2 1>4",
              FlowsOf("1+call 2+call 3+execute 3-execute 3+execute 3-execute 2-call 1-call"));
    // The second wakes first; a command that nobody waits for runs in front of the call's.
    EXPECT_EQ("0>2 1>5",
              FlowsOf("1+call 2+call 3+execute 3-execute 1-call 3+execute 3-execute 2-call"));
    EXPECT_EQ("0>3", FlowsOf("1+call 3+execute 3-execute 3+execute 3-execute 1-call"));
    // Still at it at the end; an Execute inside is a function like any other.
    EXPECT_EQ("0>1", FlowsOf("1+call 3+execute 3+execute 3-execute"));
    EXPECT_EQ("", FlowsOf("3+execute 3-execute 1+call 1-call 1+call 1+execute 1-execute 1-call"));
}

TEST(Flows, GoFromSchedulingToFiringInOrder)
{
    EXPECT_EQ("0>3 1>5", FlowsOf("1.schedule 2.schedule 3+burst 3+fire 3-fire 3+fire 3.fire 3-fire"
                                 " 3-burst 3.fire"));
    EXPECT_EQ("0>2", FlowsOf("1.schedule 3+burst 3.fire 3.fire 3-burst"));
    // What left no record of its firing is over when the next burst begins.
    EXPECT_EQ(
        "4>6",
        FlowsOf("1.schedule 3+burst 3.Event.Other 3-burst 1.schedule 3+burst 3.fire 3-burst"));
}

TEST(ErrorFates, FollowErrorsThroughChainsAndCallsToTheirDismissal)
{
    EXPECT_EQ("", UndismissedIn("1+A.a 1!A.b 1*A.a"));
    EXPECT_EQ("1", UndismissedIn("1+A.a 1!A.b 2*A.a"));
    EXPECT_EQ("", UndismissedIn("1+A.a 1+A.b 1!A.b 1-A.b 1!A.a 1*A.a")); // one chain
    EXPECT_EQ("1", UndismissedIn("1+A.a 1!A.b 1+A.b 1!A.b 1*A.a")); // the thread went on between
    EXPECT_EQ("", UndismissedIn("1+call 2+execute 2!A.b 2-execute 1-call 1*A.a"));
}

TEST(EndReport, TellsWhereEachThreadWasAndWhatFailed)
{
    Dump dump =
        DumpOfPlaces("1+Pump.Drain 2+Valve.Turn 1+Pump.Fill 2!Valve.Turn 3+A.a 3-A.a 1.Pump.Fill");
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
     0.000000  since Timing_point (0, 0) at Pump.Fill
  in no scope: 3

Errors raised and not dismissed
     0.000003  Root_error at Valve.Turn, line 0 on 2
                 in Valve.Turn
)",
              EndReport::Compose(RecordingsOf(std::move(dump))[0]));
}

TEST(Merging, PutsDumpsOnOneAxisByTheirWallClocks)
{
    const std::string lead = "%% Reference time: -1.000000 is approximately 500ms past ";
    std::vector<Dump> dumps;
    dumps.push_back(ReadText(lead + "Mon Feb 28 10:00:02 2028\n" + RecordLines(0, -1, "late")));
    dumps.push_back(ReadText(lead + "Mon Feb 28 10:00:00 2028\n" + RecordLines(0, -1, "early")));
    const Recordings merged = Merging::Merge(std::move(dumps), {"b.log", "a.log"});
    EXPECT_EQ("     0.000000  2028-02-28 10:00:01.500  a.log: 7  Timing_point at C.early\n"
              "     2.000000  2028-02-28 10:00:03.500  b.log: 7  Timing_point at C.late\n",
              RecordList::Compose(merged));
    EXPECT_EQ("", BrokenTraceRule(TraceEvents::Compose(merged), 2));
    EXPECT_NE(std::string::npos, Summary::Compose(merged).find("\nb.log, 1 record\n"));

    dumps.clear();
    dumps.push_back(ReadText(lead + "Mon Feb 28 10:00:02 2028\n" + RecordLines(0, -1, "known")));
    dumps.push_back(DumpOf("."));
    const Recordings apart = Merging::Merge(std::move(dumps), {"a.log", "b.log"});
    EXPECT_TRUE(apart[1].dump.findings.notMerged);
    EXPECT_NE(std::string::npos, RecordList::Compose(apart).find("0.000000  b.log: 7  Timing"));
}
