#include "views/check.h"

#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

constexpr Style kPipe = {false, false, false, 80};
constexpr Style kTerminal = {true, true, true, 80};

constexpr char kData[] = "|read=244.012 write=41.035 latency=13.000ms\n";

class Check : public testing::Test {
 protected:
  /// Runs of the last days at this hour, all well, and then `latest`.
  static std::vector<watch::Run> after(int days, std::vector<watch::Run> latest) {
    std::vector<watch::Run> runs;
    for (int i = days; i > 0; --i) {
      runs.push_back(okRun(kNow - i * kDay - kHour));
    }
    runs.insert(runs.end(), latest.begin(), latest.end());
    return runs;
  }

  void expect(Verdict verdict, const std::string& text) {
    const Checked checked = checkRuns(runs, runs, limits, kNow, style);

    EXPECT_EQ(checked.verdict, verdict);
    EXPECT_EQ(checked.text, text);
  }

  Zone berlin{"Europe/Berlin"};
  std::vector<watch::Run> runs = {okRun(kNow - 3 * kHour)};
  Limits limits;
  Style style = kPipe;
};

TEST_F(Check, IsOkAfterAGoodRunAndSaysItsAge) {
  expect(
      Verdict::ok,
      std::string("OK: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms at 07:00 (3 h ago)") +
          kData);
}

TEST_F(Check, LeavesThePerformanceDataToPrograms) {
  style = kTerminal;

  expect(Verdict::ok,
         "\x1b[32mOK\x1b[0m: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms at 07:00 (3 h "
         "ago)\n");
}

TEST_F(Check, NamesTheDayOfAnOldRunAndLeavesTheVerdictToTheRun) {
  runs = {okRun(kNow - 400 * kDay)};

  expect(Verdict::ok,
         std::string("OK: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms on 17 October 2025 "
                     "11:00 (400 days ago)") +
             kData);
}

TEST_F(Check, IsUnknownWithoutARun) {
  runs.clear();
  expect(Verdict::unknown, "UNKNOWN: there are no runs\n");

  runs = {orphan()};
  expect(Verdict::unknown, "UNKNOWN: there are no runs\n");
}

TEST_F(Check, IsCriticalAfterARunThatMeasuredNothing) {
  runs.push_back(failedRun(kNow - kHour));

  expect(Verdict::critical,
         "CRITICAL: nothing measured (no reply, no test) at 09:00 (60 min ago)|read=U write=U "
         "latency=U\n");
}

TEST_F(Check, JudgesARunWhoseTimeIsNotKnown) {
  runs.push_back(failedRun({}));

  expect(
      Verdict::critical,
      "CRITICAL: nothing measured (no reply, no test) at a time that is not known|read=U write=U "
      "latency=U\n");
}

TEST_F(Check, WarnsAfterAPartialRun) {
  runs = {cutRun(kNow - kHour)};

  expect(Verdict::warning,
         "WARNING: write 41.0 Mbit/s, latency 13.0 ms (read cut, 3.1 of 10 s) at 09:00 (60 min "
         "ago)|read=U write=41.035 latency=13.000ms\n");
}

TEST_F(Check, DoesNotTakeAnOutputOfAPingForARun) {
  runs.push_back(orphan());

  expect(
      Verdict::ok,
      std::string("OK: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms at 07:00 (3 h ago)") +
          kData);
}

TEST_F(Check, IsOkWithinItsLimits) {
  limits.read = 244;
  limits.write = 0.5;
  limits.latency = 13;

  expect(Verdict::ok,
         "OK: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms at 07:00 (3 h "
         "ago)|read=244.012;;244: write=41.035;;0.5: latency=13.000ms;;13\n");
}

TEST_F(Check, IsCriticalBeyondALimit) {
  limits.read = 1'000'000;
  limits.latency = 12.9994;

  expect(Verdict::critical,
         "CRITICAL: read 244.0 Mbit/s, latency 13.0 ms at 07:00 (3 h ago)|read=244.012;;1000000: "
         "write=41.035 latency=13.000ms;;12.999\n");
}

TEST_F(Check, IsCriticalWhereWhatHasALimitIsNotMeasured) {
  limits.read = 10;
  runs = {cutRun(kNow - kHour)};

  expect(Verdict::critical,
         "CRITICAL: read not measured (read cut, 3.1 of 10 s) at 09:00 (60 min ago)|read=U;;10: "
         "write=41.035 latency=13.000ms\n");
}

TEST_F(Check, LooksAtNothingButWhatHasALimit) {
  limits.write = 30;
  runs = {cutRun(kNow - kHour)};

  expect(Verdict::ok,
         "OK: write 41.0 Mbit/s, latency 13.0 ms at 09:00 (60 min ago)|read=U write=41.035;;30: "
         "latency=13.000ms\n");
}

TEST_F(Check, LeavesNoBarInAReason) {
  runs = {cutRun(kNow - kHour)};
  runs[0].read.reason = "a|b";

  expect(Verdict::warning,
         "WARNING: write 41.0 Mbit/s, latency 13.0 ms (read cut, a/b) at 09:00 (60 min ago)|read=U "
         "write=41.035 latency=13.000ms\n");
}

TEST_F(Check, IsUnknownWhereAFigureWithALimitIsInDoubt) {
  limits.latency = 50;
  runs = {unsureRun(kNow - kHour)};

  expect(
      Verdict::unknown,
      "UNKNOWN: latency cannot be told (no ping; no output of a ping: switched off, or there was "
      "no ping) at 09:00 (60 min ago)|read=244.012 write=41.035 latency=U;;50\n");

  limits = {};
  limits.read = 1000;
  runs = {runOfUnsureRates(kNow - kHour)};

  expect(
      Verdict::unknown,
      "UNKNOWN: read cannot be told (its iperf3 lines could be those of a run beside it) at 09:00 "
      "(60 min ago)|read=244.012;;1000: write=41.035 latency=13.000ms\n");
}

TEST_F(Check, TellsTheFiguresThatAreInNoDoubt) {
  limits.read = 200;
  runs = {unsureRun(kNow - kHour)};

  expect(Verdict::ok,
         "OK: read 244.0 Mbit/s, write 41.0 Mbit/s at 09:00 (60 min ago)|read=244.012;;200: "
         "write=41.035 latency=U\n");
}

TEST_F(Check, IsUnknownWhereOnlyTheDoubtKeepsARunFromBeingOk) {
  runs = {unsureRun(kNow - kHour)};

  expect(
      Verdict::unknown,
      "UNKNOWN: read 244.0 Mbit/s, write 41.0 Mbit/s (no ping; no output of a ping: switched off, "
      "or there was no ping) at 09:00 (60 min ago)|read=244.012 write=41.035 latency=U\n"
      "  Name what counts:  --read, --write\n");
}

TEST_F(Check, NamesTheBadOnesOfTheLastRuns) {
  limits.read = 200;
  limits.bad = 2;
  limits.of = 3;
  runs = {okRun(kNow - 5 * kHour), cutRun(kNow - 3 * kHour), okRun(kNow - 2 * kHour),
          failedRun({})};

  expect(Verdict::critical,
         "CRITICAL: 2 of the last 3 runs bad (read below 200 Mbit/s, or not measured)|read=U;;200: "
         "write=U latency=U\n"
         "  07:00  read not measured (read cut, 3.1 of 10 s)\n"
         "    -    read not measured (no reply, no test)\n"
         "  last good run: 08:00, 2 h ago\n");
}

TEST_F(Check, SaysWhenNoRunWasGood) {
  limits.bad = 2;
  limits.of = 9;
  runs = {failedRun(kNow - 2 * kDay), failedRun(kNow - kHour)};

  expect(Verdict::critical,
         "CRITICAL: 2 of the last 2 runs bad (nothing measured)|read=U write=U latency=U\n"
         "  19 November 10:00  nothing measured (no reply, no test)\n"
         "  09:00  nothing measured (no reply, no test)\n"
         "  no good run before\n");
}

TEST_F(Check, IsOkBelowTheNumberOfBadRuns) {
  limits.bad = 2;
  limits.of = 3;
  runs = {failedRun(kNow - 4 * kHour), failedRun(kNow - 3 * kHour), okRun(kNow - 2 * kHour),
          okRun(kNow - kHour)};

  expect(Verdict::ok,
         std::string("OK: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms at 09:00 (60 min "
                     "ago)") +
             kData);
}

TEST_F(Check, IsUnknownWhereDoubtfulRunsCouldMakeUpTheNumber) {
  limits.latency = 50;
  limits.bad = 2;
  limits.of = 3;
  runs = {failedRun(kNow - 4 * kHour), unsureRun(kNow - 3 * kHour), okRun(kNow - kHour)};

  expect(
      Verdict::unknown,
      "UNKNOWN: 1 of the last 3 runs bad, and 1 cannot be told|read=244.012 write=41.035 "
      "latency=13.000ms;;50\n"
      "  06:00  latency not measured (no reply, no test)\n"
      "  07:00  latency cannot be told (no ping; no output of a ping: switched off, or there was "
      "no ping)\n");
}

TEST_F(Check, WarnsBelowAShareOfTheUsual) {
  limits.below = 50;
  runs = after(5, {okRun(kNow - kHour)});
  runs.back().read.bps = 100e6;

  expect(Verdict::warning,
         "WARNING: read 100.0 Mbit/s, 41 % of what is usual at that hour (244.0), at 09:00 (60 min "
         "ago)|read=100.000;122.006: write=41.035;20.517: latency=13.000ms\n");
}

TEST_F(Check, IsOkAtTheUsual) {
  limits.below = 100;
  runs = after(5, {okRun(kNow - kHour)});

  expect(Verdict::ok,
         "OK: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms at 09:00 (60 min "
         "ago)|read=244.012;244.012: write=41.035;41.035: latency=13.000ms\n");
}

TEST_F(Check, WarnsWhereWhatIsUsualWasNotMeasured) {
  limits.below = 50;
  runs = after(5, {cutRun(kNow - kHour)});

  expect(Verdict::warning,
         "WARNING: read not measured (read cut, 3.1 of 10 s) at 09:00 (60 min "
         "ago)|read=U;122.006: write=41.035;20.517: latency=13.000ms\n");
}

TEST_F(Check, DoesNotGuessWhatIsUsual) {
  limits.below = 50;

  expect(Verdict::unknown, "UNKNOWN: too few runs to know what is usual\n");

  runs = after(5, {okRun(kNow)});
  runs.back().time = {};

  expect(Verdict::unknown, "UNKNOWN: too few runs to know what is usual\n");
}

TEST_F(Check, IsUnknownWhenTheLastRunIsTooOld) {
  limits.maxAge = 2 * kHour;
  limits.read = 1000;
  runs = {okRun(kNow - 5 * kHour), okRun(kNow - 4 * kHour), okRun(kNow - 3 * kHour)};

  expect(Verdict::unknown,
         "UNKNOWN: the last run is 3 h old; runs came every 60 min until 07:00\n");
}

TEST_F(Check, TellsNoRhythmOfOneRun) {
  limits.maxAge = 3 * kHour - 1;
  expect(Verdict::unknown, "UNKNOWN: the last run is 3 h old\n");

  limits.maxAge = 3 * kHour;
  expect(
      Verdict::ok,
      std::string("OK: read 244.0 Mbit/s, write 41.0 Mbit/s, latency 13.0 ms at 07:00 (3 h ago)") +
          kData);
}

TEST_F(Check, IsUnknownWhereTheAgeIs) {
  limits.maxAge = kHour;
  runs = {failedRun({})};
  expect(Verdict::unknown, "UNKNOWN: the time of the last run is not known\n");

  runs = {okRun(kNow + 2 * kHour)};
  expect(Verdict::unknown, "UNKNOWN: the last run is 2 h ahead of the clock\n");
}

}  // namespace
}  // namespace watch
