#include "plan.h"

#include <algorithm>

namespace watch {

namespace {

// What the adapters give a tool beyond its time, and until it is killed; and one whose arguments
// set no end. They are those of adapter/, without CONNTESTER_GRACE_SECONDS.
constexpr int kPingGraceSeconds = 30;
constexpr int kIperf3GraceSeconds = 60;
constexpr int kPatienceSeconds = 10;
constexpr int kEndlessSeconds = 60;

/// Nothing longer than a day is planned, so that sums stay numbers.
constexpr int kLongestSeconds = 24 * 60 * 60;

PlannedTest planTool(int seconds, int graceSeconds) {
  const int planned = std::clamp(seconds, 0, kLongestSeconds);
  const int limit = seconds > 0 ? planned + graceSeconds : kEndlessSeconds;
  return {planned, limit + kPatienceSeconds};
}

/// The tester waits for a second more than the test, after it.
PlannedTest planDirection(int seconds) {
  const PlannedTest tool = planTool(seconds, kIperf3GraceSeconds);
  const int wait = std::clamp(seconds, -1, kLongestSeconds) + 1;
  return {tool.seconds + wait, tool.mostSeconds + wait};
}

}  // namespace

PlannedTest Plan::total() const {
  return {ping.seconds + write.seconds + read.seconds,
          ping.mostSeconds + write.mostSeconds + read.mostSeconds};
}

Plan planOf(const Configuration& settings) {
  Plan plan;
  if (settings.doPingTests) {
    plan.ping = planTool(settings.numPings, kPingGraceSeconds);
  }
  if (settings.doIperf3Tests) {
    plan.write = plan.read = planDirection(settings.iperfTestTime);
  }
  return plan;
}

}  // namespace watch
