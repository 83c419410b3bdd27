#include "viewer/model/scopes/Timelines.h"

#include "tests/viewer/SampleDump.h"
#include "viewer/CommandLine.h"

#include <gtest/gtest.h>

namespace
{

/// The shape of what passes the filters among the options.
std::string ShapeOf(Dump dump, const std::vector<std::filesystem::path>& options = {})
{
    std::vector<Timeline> timelines = Timelines::Of(dump);
    Timelines::Keep(CommandLine::Parse(options).FilterFor(dump), dump.names, timelines);
    return Shape(timelines);
}

} // namespace

TEST(Timelines, NestScopesOfEachThreadByThemselves)
{
    EXPECT_EQ("7: a0-6 >p1 >b2-5 >>b3-4", ShapeOf(DumpOf("+a.+b+b-b-b-a")));
    EXPECT_EQ("1: a0-4 >p2; 2: b1-5 >a3-5? p6", ShapeOf(DumpOf("1+a2+b1.2+a1-a2-b.")));
}

TEST(Timelines, FindTheirFeetAgainWhenRecordsAreLost)
{
    // The ring has lost where a and b begin: they hold all that was before.
    EXPECT_EQ("7: a0?-5 >b0?-3 >>p0 >>c1-2 >p4", ShapeOf(DumpOf(".+c-c-b.-a")));
    EXPECT_EQ("1: a0-2; 2: b0?-1", ShapeOf(DumpOf("1+a2-b1-a")));
    // Scopes that are not left end with the next around them that is, or with the dump.
    EXPECT_EQ("7: a0-2 >b1-2? p3 c4-5", ShapeOf(DumpOf("+a+b-a.+c-c")));
    EXPECT_EQ("1: a0-4? >a1-2; 2: p3 p4", ShapeOf(DumpOf("1+a+a-a2..")));
    // What fits nothing is an event.
    EXPECT_EQ("7: a0-3 >x1 >p2", ShapeOf(DumpOf("+a-x.-a")));
    EXPECT_EQ("7: a0-2; 0: p1", ShapeOf(DumpOf("+a~-a")));

    Dump dump = DumpOf(".+a-b~-a-c+d");
    Timelines::Of(dump);
    EXPECT_EQ((std::vector<std::string>{"The recorder did not know the wall clock.",
                                        "1 record was still being written, and has no thread.",
                                        "1 scope was entered before the oldest record.",
                                        "1 scope had not been left, or the record of that is lost.",
                                        "1 end of a scope fits none that is open."}),
              dump.findings.Sentences());
}

TEST(Timelines, StayFastWhenNothingPairsUp)
{
    std::string pushes, pops;
    for (int i = 0; i < 100000; ++i) {
        pushes += "+a";
        pops += "-b";
    }
    Dump dump = DumpOf(pushes + pops);
    EXPECT_EQ(200000u, Timelines::Of(dump)[0].entries.size());
    EXPECT_EQ(100000u, dump.findings.strayEnds);
}

TEST(Timelines, KeepWhatPassesAFilterNestedInWhatStays)
{
    EXPECT_EQ("7: a0-5 >b1-3 >>p2",
              ShapeOf(DumpOf("+a+b.-b.-a+c"), {"--from", "2e-6", "--to", "3e-6"}));
    EXPECT_EQ("2: b1-2", ShapeOf(DumpOf("1+a2+b-b1-a"), {"--thread", "2"}));

    const Dump sample = ReadText(sampleDump);
    const char drain[] = "36: \314300-320 >\314310"; // 204 is its function
    EXPECT_EQ(drain, ShapeOf(sample, {"--class", "Pump"}));
    for (const char* pump : {"0xfffffffffffffff0", "0XFFFFFFFFFFFFFFF0", "FFFFFFFFFFFFFFF0"})
        EXPECT_EQ(drain, ShapeOf(sample, {"--object", pump})) << pump;
    EXPECT_EQ("260: p250", ShapeOf(sample, {"--object", "a (b) in_class c at d", "--thread",
                                            "in_thread 36 (x)"}));
}
