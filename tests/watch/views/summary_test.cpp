#include "views/summary.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

class Summary : public testing::Test {
 protected:
  /// A run every hour for so many days, slower in the evenings, without connection in the night
  /// before the last.
  static std::vector<watch::Run> days(int count) {
    std::vector<watch::Run> runs;
    for (int hour = count * 24; hour > 0; --hour) {
      watch::Run run = okRun(kNow - hour * kHour);
      const bool isEvening = hour % 24 > 11 && hour % 24 < 15;
      run.read.bps = isEvening ? 150e6 : 244e6;
      run.ping.avg = isEvening ? 21 : 13;
      runs.push_back(hour > 30 && hour < 36 ? failedRun(run.time) : run);
    }
    return runs;
  }

  Zone berlin{"Europe/Berlin"};
  Style style{true, false, true, 80};
};

TEST_F(Summary, TellsOneRun) {
  const watch::Run run = okRun(kNow);

  EXPECT_EQ(summaryView({&run, 1}, style), R"(21 November 2026   1 run, 0 missing

           usual  1 in 20          by day, 1 day
read       244.0        -  Mbit/s  █
write       41.0        -  Mbit/s  █
latency     13.0        -  ms      █
loss         0.0        -  %       ▁

by hour of the day                 0     6     12    18
read                               ··········█·············
latency                            ··········█·············

ok 1   partial 0   failed 0   missing 0
No outage
)");
}

TEST_F(Summary, TellsADay) {
  EXPECT_EQ(summaryView(days(1), style), R"(20 to 21 November 2026   24 runs, 0 missing

           usual  1 in 20          by day, 2 days
read       244.0    150.0  Mbit/s  ██
write       41.0     41.0  Mbit/s  ██
latency     13.0     21.0  ms      ██
loss         0.0      0.0  %       ▁▁

by hour of the day                 0     6     12    18
read                               ████████████████████▅▅▅█
latency                            ▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅███▅

ok 24   partial 0   failed 0   missing 0
No outage
)");
}

TEST_F(Summary, TellsFourWeeks) {
  std::vector<watch::Run> runs = days(28);
  runs.erase(runs.begin() + 100, runs.begin() + 148);

  EXPECT_EQ(summaryView(runs, style), R"(24 October to 21 November 2026   624 runs, 48 missing

           usual  1 in 20          by day, 29 days
read       244.0    150.0  Mbit/s  █████·███████████████████████
write       41.0     41.0  Mbit/s  █████·███████████████████████
latency     13.0     21.0  ms      █████·███████████████████████
loss         0.0      0.0  %       ▁▁▁▁▁·▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁

by hour of the day                 0     6     12    18
read                               ████████████████████▅▅▅█
latency                            ▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅███▅

ok 619   partial 0   failed 5   missing 48
No connection: about 5 h in 1 outage, the longest about 5 h on 19 November
)");
}

TEST_F(Summary, TellsThreeYears) {
  EXPECT_EQ(summaryView(days(3 * 365), style),
            R"(22 November 2023 to 21 November 2026   26280 runs, 0 missing

           usual  1 in 20          1096 days, the worst of each 25
read       244.0    150.0  Mbit/s  ████████████████████████████████████████████
write       41.0     41.0  Mbit/s  ████████████████████████████████████████████
latency     13.0     21.0  ms      ████████████████████████████████████████████
loss         0.0      0.0  %       ▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁

by hour of the day                 0     6     12    18
read                               █████████████████████▅▅▅
latency                            ▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅███

ok 26275   partial 0   failed 5   missing 0
No connection: about 5 h in 1 outage, the longest about 5 h on 19 November
)");
}

TEST_F(Summary, PutsBarsBelowOnANarrowTerminal) {
  style.width = 40;

  EXPECT_EQ(summaryView(days(28), style), R"(24 October to 21 November 2026
672 runs, 0 missing

           usual  1 in 20
read       244.0    150.0  Mbit/s
write       41.0     41.0  Mbit/s
latency     13.0     21.0  ms
loss         0.0      0.0  %

by day, 29 days
read    █████████████████████████████
write   █████████████████████████████
latency █████████████████████████████
loss    ▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁▁

by hour of the day
        0     6     12    18
read    ████████████████████▅▅▅█
latency ▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅▅███▅

ok 667
partial 0
failed 5
missing 0
No connection: about 5 h in 1 outage,
the longest about 5 h on 19 November
)");
}

TEST_F(Summary, HasDigitsWithoutUtf8) {
  style.hasBars = false;
  style.isTerminal = false;

  EXPECT_EQ(summaryView(days(2), style), R"(19 to 21 November 2026   48 runs, 0 missing

           usual  1 in 20          by day, 3 days
read       244.0    150.0  Mbit/s  888
write       41.0     41.0  Mbit/s  888
latency     13.0     21.0  ms      888
loss         0.0    100.0  %       111

by hour of the day                 0     6     12    18
read                               888888888888888888885558
latency                            555555555555555555558885

ok 43   partial 0   failed 5   missing 0
No connection: about 5 h in 1 outage, the longest about 5 h on 19 November
)");
}

TEST_F(Summary, CountsWhatIsUnsureAndWhatIsNoRun) {
  const watch::Run runs[] = {unsureRun(kNow), orphan(), orphan()};
  style.hasColour = true;

  EXPECT_EQ(
      summaryView(runs, style),
      "\x1b[1m21 November 2026\x1b[0m   1 run, 0 missing\n"
      "\n"
      "\x1b[2m           usual  1 in 20          by day, 1 day\x1b[0m\n"
      "\x1b[1mread\x1b[0m       244.0        -  Mbit/s  \x1b[36m█\x1b[0m\n"
      "\x1b[1mwrite\x1b[0m       41.0        -  Mbit/s  \x1b[36m█\x1b[0m\n"
      "\x1b[1mlatency\x1b[0m        -        -  ms      \x1b[36m·\x1b[0m\n"
      "\x1b[1mloss\x1b[0m        30.0        -  %       \x1b[36m·\x1b[0m\n"
      "\n"
      "\x1b[2mby hour of the day                 0     6     12    18\x1b[0m\n"
      "\x1b[1mread\x1b[0m                               \x1b[36m··········█·············\x1b[0m\n"
      "\x1b[1mlatency\x1b[0m                            \x1b[36m························\x1b[0m\n"
      "\n"
      "ok 0   partial 1   failed 0   missing 0\n"
      "1 unsure: list marks them with a ?, and show says why\n"
      "2 pings of no known run\n"
      "No outage\n");
}

TEST_F(Summary, TellsRunsOfWhichNoTimeIsKnown) {
  const watch::Run runs[] = {failedRun({}), failedRun({})};

  EXPECT_EQ(summaryView(runs, style), R"(Runs of which no time is known   2 runs, 0 missing

           usual  1 in 20
read           -        -  Mbit/s
write          -        -  Mbit/s
latency        -        -  ms
loss       100.0        -  %

ok 0   partial 0   failed 2   missing 0
No outage can be told
)");
}

TEST_F(Summary, DoesNotDenyAnOutageWithoutARun) {
  const watch::Run run = orphan();

  EXPECT_EQ(summaryView({&run, 1}, style), R"(Runs of which no time is known   0 runs, 0 missing

           usual  1 in 20
read           -        -  Mbit/s
write          -        -  Mbit/s
latency        -        -  ms
loss        30.0        -  %

ok 0   partial 0   failed 0   missing 0
1 ping of no known run
No outage can be told
)");
}

TEST_F(Summary, TellsRunsTenThousandYearsApart) {
  const watch::Run runs[] = {okRun(-60'000'000'000), okRun(0), okRun(250'000'000'000)};

  EXPECT_EQ(summaryView(runs, style), R"(3 September 68 to 8 March 9892   3 runs, 0 missing

           usual  1 in 20          3587964 days, the worst of each 79733
read       244.0        -  Mbit/s  █·······█···································█
write       41.0        -  Mbit/s  █·······█···································█
latency     13.0        -  ms      █·······█···································█
loss         0.0        -  %       ▁·······▁···································▁

by hour of the day                 0     6     12    18
read                               ·█···········██·········
latency                            ·█···········██·········

ok 3   partial 0   failed 0   missing 0
No outage
)");
}

}  // namespace
}  // namespace watch
