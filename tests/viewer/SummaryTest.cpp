#include "viewer/showing/text/Summary.h"

#include "tests/viewer/SampleDump.h"
#include "viewer/showing/text/ScopeTree.h"

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
    EXPECT_EQ(R"(5 records in 0.000004 seconds, passing the filters: 1

At the end
  in no scope: 2

Findings
  The recorder did not know the wall clock.

No errors

    Count        Self     Median    Slowest  Name
        1    0.000002   0.000002   0.000002  C.b

         Took         from  Longest scopes
     0.000002     0.000001  C.b on 2

  Records         from           to  Thread
        1     0.000003     0.000003  2

   Events  Class
        1  C: Scope_pop 1
)",
              Summary::Compose(RecordingsOf(DumpOf("1+a2+b.-b1-a"), filter)));
}

TEST(ScopeTree, OfASmallDumpAndOfLostScopes)
{
    EXPECT_EQ(R"(Thread 36 Host
         time         took
     0.000000               - Construction at Station.Station (a (b) in_class c at d), line 32
     0.000100    12.345801  Station.Serve (a (b) in_class c at d)
     0.000300     0.000020    Pump.Drain (FFFFFFFFFFFFFFF0)
     0.000310                   - Root_error RunsDry at Pump.Drain (FFFFFFFFFFFFFFF0), line 38
     0.000400                 - Dismissed_error at Station.Serve (a (b) in_class c at d), line 52

Thread 260 in_thread 36 (x)
         time         took
     0.000250               - State_change to off, in_class at at Station.ChangeState (a (b) in_class c at d)
     1.000000               - Timing_point (1, -2) at (unknown).(unknown)
)",
              ScopeTree::Compose(RecordingsOf(sampleDump)));

    EXPECT_EQ(R"(Thread 7
         time         took
     0.000000     0.000000  C.a, entered before
     0.000001     0.000000  C.b, not left
)",
              ScopeTree::Compose(RecordingsOf(DumpOf("-a+b"))));
}
