#include "figures/outcome.h"

#include "watch/support/made_runs.h"

#include <gtest/gtest.h>

namespace watch {
namespace {

/// The ping had replies, and no test came about.
watch::Run runWithoutServer(const char* reason) {
  watch::Run run = okRun(kNow);
  run.runClass = Class::partial;
  run.write = {RateState::noTest, kNotMeasured, {}, kNotMeasured, 10, reason};
  run.read = run.write;
  return run;
}

/// Ping was switched off, and the server said why it made no test.
watch::Run refusedRun(const char* reason) {
  watch::Run run = runWithoutServer(reason);
  run.runClass = Class::failed;
  run.ping = {};
  run.ping.state = PingState::off;
  return run;
}

TEST(Outcome, IsMeasuredWhenAllWas) {
  EXPECT_EQ(outcomeOf(okRun(kNow)), Outcome::measured);
}

TEST(Outcome, IsPartlyWhenATestWasCutOrTheRunEnded) {
  EXPECT_EQ(outcomeOf(cutRun(kNow)), Outcome::partly);
  EXPECT_EQ(outcomeOf(endedRun(kNow)), Outcome::partly);
  EXPECT_EQ(outcomeOf(unsureRun(kNow)), Outcome::partly);
}

TEST(Outcome, IsNoConnectionWhenNothingCameBack) {
  EXPECT_EQ(outcomeOf(failedRun(kNow)), Outcome::noConnection);
}

TEST(Outcome, IsNoServerWhenThePingCameBackAndNoTestCameAbout) {
  EXPECT_EQ(outcomeOf(runWithoutServer("")), Outcome::noServer);
}

TEST(Outcome, IsNoServerWhenItHasRefused) {
  EXPECT_EQ(outcomeOf(refusedRun("error - the server is busy running a test")), Outcome::noServer);
  EXPECT_EQ(outcomeOf(refusedRun("unable to connect: Connection refused")), Outcome::noServer);
  EXPECT_EQ(outcomeOf(refusedRun("No route to host")), Outcome::noConnection);
}

TEST(Outcome, IsNoneOfTheseWhenTheFilesDoNotTell) {
  watch::Run ended = endedRun(kNow);
  ended.runClass = Class::failed;
  ended.ping = {};
  ended.write = {};

  EXPECT_EQ(outcomeOf(ended), Outcome::nothing);
}

}  // namespace
}  // namespace watch
