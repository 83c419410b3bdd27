#include "viewer/showing/text/Summary.h"

#include "tests/viewer/SampleDump.h"
#include "viewer/forms/TextForms.h"
#include "viewer/showing/text/RecordList.h"
#include "viewer/showing/text/ScopeTree.h"
#include "viewer/showing/text/StatisticsTable.h"

#include <gtest/gtest.h>

TEST(Summary, OfASmallDump)
{
    EXPECT_EQ(R"(9 records in 12.345901 seconds
  recorder started  2026-11-15 15:12:20.532    -0.250000
  first record      2026-11-15 15:12:20.782     0.000000
  last record       2026-11-15 15:12:33.127    12.345901

At the end
  in no scope: 36 Host, 260 in_thread 36 (x)

   Raised  Dismissed       latest  Error
        1          1     0.000310  RunsDry at Pump.Drain

    Count        Self     Median    Slowest  Name
        1   12.345781  12.345801  12.345801  Station.Serve
        1    0.000020   0.000020   0.000020  Pump.Drain

         Took         from  Longest scopes
    12.345801     0.000100  Station.Serve (a (b) in_class c at d) on 36 Host
     0.000020     0.000300  Pump.Drain (FFFFFFFFFFFFFFF0) on 36 Host

  Records         from           to  Thread
        7     0.000000    12.345901  36 Host
        2     0.000250     1.000000  260 in_thread 36 (x)

   Events  Class
        5  Station: Construction 1, Dismissed_error 1, Scope_pop 1, Scope_push 1, State_change 1
        3  Pump: Root_error 1, Scope_pop 1, Scope_push 1
        1  (unknown): Timing_point 1
)",
              Summary::Compose(RecordingsOf(sampleDump)));
}

TEST(Summary, OfWhatPassesAFilterAndWithFindings)
{
    RecordFilter filter;
    filter.thread = "2";
    filter.from = 3;
    const std::string summary = Summary::Compose(RecordingsOf(DumpOf("1+a2+b.-b1-a"), filter));
    for (const char* told :
         {"5 records in 0.000004 seconds, passing the filters: 1\n\nAt the end\n  in no scope: 2\n",
          "\nFindings\n  The recorder did not know the wall clock.\n\nNo errors\n",
          "        1    0.000002   0.000002   0.000002  C.b\n",
          "     0.000002     0.000001  C.b on 2\n", "        1     0.000003     0.000003  2\n",
          "        1  C: Scope_pop 1\n"})
        EXPECT_NE(std::string::npos, summary.find(told)) << told << summary;
}

TEST(Summary, SaysHowMuchMoreThereIs)
{
    std::string story;
    for (const char thread : std::string("ABCDEFGHIJKLMN"))
        for (const char* what : {"+f", "!f", "-f"}) // those in small letters have left it
            story += {static_cast<char>(thread + (*what == '-' ? 32 : 0)), what[0], what[1], thread,
                      ' '};
    for (int deep = 0; deep < 42; ++deep)
        story += "A+deep ";
    story += "A+g A-g A+g A-g A+g A-g A+g A-g A+g A-g A+g A-g A+g A.f A-g";
    const Recordings recordings = RecordingsOf(DumpOfPlaces(story));
    const std::string told = Summary::Compose(recordings) + ScopeTree::Compose(recordings);
    for (const char* more :
         {" and 2 threads more in scopes; --tree", "in 31 scopes more, and\n",
          "59, 60 and 2 more\n", ", the latest of 14\n", " and 2 more; --list",
          " and 8 more; --stats", " [42] C.deep", "Longest scopes\n     0.000002 "})
        EXPECT_NE(std::string::npos, told.find(more)) << more << told;
}

TEST(ScopeTree, SaysWhichEndsAreLost)
{
    EXPECT_EQ(R"(Thread 7
         time         took
     0.000000     0.000000  C.a, entered before
     0.000001     0.000000  C.b, not left
)",
              ScopeTree::Compose(RecordingsOf(DumpOf("-a+b"))));
}

// In the middle, where names differ least; what does not fit even so is wider.
TEST(StatisticsTable, AndListsKeepToAWidthByShorteningNames)
{
    const Recordings recordings = RecordingsOf(sampleDump);
    const auto rows = ScopeStatistics::Of(recordings, ScopeStatistics::By::Object);
    EXPECT_EQ(R"(  Count       Self      Total     Median       99 %    Slowest  Wait  Name
      1  12.345781  12.345801  12.345801  12.345801  12.345801        a (b)…c at d
      1   0.000020   0.000020   0.000020   0.000020   0.000020        FFFFF…0 Pump
)",
              StatisticsTable::Compose(rows, 80));
    EXPECT_EQ("\u2026\u00DF\u2026",
              TextForms::Shorten("\u00FC\u00FC\u00DF", 2) + TextForms::Shorten("ab", 1));
    const std::string list = RecordList::Compose(recordings, 80);
    EXPECT_NE(
        std::string::npos,
        list.find(
            "     0.000250  15:12:20.782  260 in…36 (x)  State_change to o…) in_class c at d)\n"))
        << list;
}
