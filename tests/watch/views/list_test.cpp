#include "views/list.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

/// 2026-11-20T20:07:00+01:00.
constexpr EpochSeconds kEvening = 1'795'201'620;

class List : public testing::Test {
 protected:
  static std::vector<watch::Run> aNight() {
    std::vector<watch::Run> runs = {okRun(kEvening),
                                    okRun(kEvening + kHour),
                                    cutRun(kEvening + 2 * kHour),
                                    failedRun({}),
                                    failedRun({}),
                                    endedRun(kEvening + 7 * kHour),
                                    unsureRun(kEvening + 8 * kHour),
                                    okRun(kEvening + 9 * kHour),
                                    orphan()};
    runs[1].ping.received = 9;
    runs[1].read.bps = 85'924.7e6;
    runs[7].read.bps = 0.5e6;
    runs[7].foldUnresolved = true;
    return runs;
  }

  Zone berlin{"Europe/Berlin"};
  Style style{true, false, true, 80};
};

TEST_F(List, ShowsRunsByDayOnATerminal) {
  EXPECT_EQ(listView(aNight(), kNow, style),
            R"(                     latency  loss    write      read
Fri 20 November           ms     %   Mbit/s    Mbit/s
  20:07   ok            13.0     0     41.0     244.0
  21:07   ok            13.0    10     41.0     85925
  22:07   partial       13.0     0     41.0      61.2*  read cut, 3.1 of 10 s
  23:07~  failed           -   100        -         -   no reply, no test
Sat 21 November
  00:07~  failed           -   100        -         -   no reply, no test
  01:07   2 hours without a run
  03:07   unfinished    13.0     0     41.0         -   ended in read test
  04:07?  partial          -     -     41.0     244.0   no ping
  05:07~  ok            13.0     0     41.0     0.500
  06:07~? a ping        12.5    30        -         -   only the output of a
                                                        ping

read  ▁█·xx ·▁▁·  0 to 85925 Mbit/s
8 runs, the last 5 h ago: 3 ok, 3 partial, 2 failed; 2 missing; 1 unsure; 1 ping
of no known run
~ a time that is not certain
? unsure: show says why
* cut short: no rate of the line
)");
}

TEST_F(List, PutsReasonsBelowOnANarrowTerminal) {
  style.width = 40;

  EXPECT_EQ(listView(aNight(), kNow, style), R"(                  latency  write    read
Fri 20 November        ms Mbit/s  Mbit/s
20:07   ok           13.0   41.0   244.0
21:07   ok           13.0   41.0   85925
22:07   partial      13.0   41.0    61.2*
        read cut, 3.1 of 10 s
23:07~  failed          -      -       -
        no reply, no test
Sat 21 November
00:07~  failed          -      -       -
        no reply, no test
01:07   2 hours without a run
03:07   unfinished   13.0   41.0       -
        ended in read test
04:07?  partial         -   41.0   244.0
        no ping
05:07~  ok           13.0   41.0   0.500
06:07~? a ping       12.5      -       -
        only the output of a ping

read  ▁█·xx ·▁▁·  0 to 85925 Mbit/s
8 runs, the last 5 h ago: 3 ok, 3
partial, 2 failed; 2 missing; 1 unsure;
1 ping of no known run
~ a time that is not certain
? unsure: show says why
* cut short: no rate of the line
)");
}

TEST_F(List, HasColoursWithoutBlanksAtTheEndOfALine) {
  style.hasColour = true;
  const watch::Run runs[] = {okRun(kEvening), cutRun(kEvening + kHour), failedRun({})};

  EXPECT_EQ(listView(runs, kNow, style),
            "\x1b[2m                     latency  loss    write      read\x1b[0m\n"
            "\x1b[1mFri 20 November\x1b[0m\x1b[2m           ms     %   Mbit/s    Mbit/s\x1b[0m\n"
            "  20:07   \x1b[32mok\x1b[0m            13.0\x1b[2m     0\x1b[0m     41.0     244.0\n"
            "  21:07   \x1b[33mpartial\x1b[0m       13.0\x1b[2m     0\x1b[0m     41.0 \x1b[33m     "
            "61.2*\x1b[0m  \x1b[2mread cut, 3.1 of 10 s\x1b[0m\n"
            "  21:07~  \x1b[1m\x1b[31mfailed\x1b[0m           -   100        -         -   "
            "\x1b[2mno reply, no test\x1b[0m\n"
            "\n"
            "\x1b[1mread\x1b[0m  \x1b[36m█\x1b[0m\x1b[33m·\x1b[0m\x1b[1m\x1b[31mx\x1b[0m  0 to "
            "244.0 Mbit/s\n"
            "3 runs, the last 13 h ago: 1 ok, 1 partial, 1 failed\n"
            "\x1b[2m~ a time that is not certain\x1b[0m\n"
            "\x1b[2m* cut short: no rate of the line\x1b[0m\n");
}

TEST_F(List, HasTheSameColumnsAlwaysInAPipe) {
  style.isTerminal = false;

  EXPECT_EQ(listView(aNight(), kNow, style),
            R"(time                        class   latency_ms loss_% write_Mbit/s  read_Mbit/s
2026-11-20T20:07:00+01:00   ok            13.0      0         41.0        244.0
2026-11-20T21:07:00+01:00   ok            13.0     10         41.0        85925
2026-11-20T22:07:00+01:00   partial       13.0      0         41.0        61.2*
2026-11-20T23:07:00+01:00~  failed           -    100            -            -
2026-11-21T00:07:00+01:00~  failed           -    100            -            -
2026-11-21T03:07:00+01:00   partial       13.0      0         41.0            -
2026-11-21T04:07:00+01:00?  partial          -      -         41.0        244.0
2026-11-21T05:07:00+01:00~  ok            13.0      0         41.0        0.500
2026-11-21T06:07:00+01:00~? orphan        12.5     30            -            -
)");
}

TEST_F(List, ShowsARunThatIsGoingOn) {
  std::vector<watch::Run> runs = {okRun(kNow - kHour), endedRun(kNow - 60)};
  runs[1].ongoing = true;

  EXPECT_EQ(listView(runs, kNow, style), R"(                     latency  loss    write      read
Sat 21 November           ms     %   Mbit/s    Mbit/s
  09:00   ok            13.0     0     41.0     244.0
  09:59   going on      13.0     0     41.0         -

read  █·  0 to 244.0 Mbit/s
1 run, the last 60 min ago: 1 ok, 0 partial, 0 failed
)");

  style.isTerminal = false;

  EXPECT_EQ(listView(runs, kNow, style),
            R"(time                        class   latency_ms loss_% write_Mbit/s  read_Mbit/s
2026-11-21T09:00:00+01:00   ok            13.0      0         41.0        244.0
)");
}

TEST_F(List, ShowsAnOrphanAlone) {
  const watch::Run run = orphan();

  EXPECT_EQ(listView({&run, 1}, kNow, style),
            R"(                     latency  loss    write      read
       ~? a ping        12.5    30        -         -   only the output of a
                                                        ping

0 runs: 0 ok, 0 partial, 0 failed; 1 ping of no known run
~ a time that is not certain
? unsure: show says why
)");
}

TEST_F(List, CountsGapsInTheirRhythm) {
  std::vector<watch::Run> runs;
  for (const EpochSeconds minute : {0, 5, 10, 15, 30, 35}) {
    runs.push_back(failedRun(kEvening + minute * 60));
  }

  EXPECT_EQ(listView(runs, kNow, style), R"(                     latency  loss    write      read
Fri 20 November           ms     %   Mbit/s    Mbit/s
  20:07   failed           -   100        -         -   no reply, no test
  20:12   failed           -   100        -         -   no reply, no test
  20:17   failed           -   100        -         -   no reply, no test
  20:22   failed           -   100        -         -   no reply, no test
  20:27   2 runs are missing
  20:37   failed           -   100        -         -   no reply, no test
  20:42   failed           -   100        -         -   no reply, no test

6 runs, the last 13 h ago: 0 ok, 0 partial, 6 failed; 2 missing
)");
}

TEST_F(List, NamesTheYearOfAnotherYearAndALongGapInDays) {
  const watch::Run runs[] = {okRun(kEvening - 400 * kDay), okRun(kEvening - 400 * kDay + kHour),
                             okRun(kEvening - kHour), okRun(kEvening)};
  style.hasBars = false;

  EXPECT_EQ(listView(runs, kNow, style), R"(                     latency  loss    write      read
Thu 16 October 2025       ms     %   Mbit/s    Mbit/s
  21:07   ok            13.0     0     41.0     244.0
  22:07   ok            13.0     0     41.0     244.0
  23:07   400 days without a run
Fri 20 November
  19:07   ok            13.0     0     41.0     244.0
  20:07   ok            13.0     0     41.0     244.0

read  88 88  0 to 244.0 Mbit/s
4 runs, the last 14 h ago: 4 ok, 0 partial, 0 failed; 9597 missing
)");
}

}  // namespace
}  // namespace watch
