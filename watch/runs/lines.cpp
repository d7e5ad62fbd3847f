#include "runs/lines.h"

#include "runs/alignment.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace watch {

namespace {

/// Costs of what does not happen in a run that comes to its end. Lost lines are rarer than runs
/// that were ended, and these rarer than a clock that was set.
constexpr int kRunEndedBefore = 10;
constexpr int kLineLost = 20;
constexpr int kClockWasSet = 5;

constexpr std::int64_t kSecondsOfDoubt = 2;
/// A ping of ten with the adapter's limits takes 50 s at most; more pings take longer.
constexpr std::int64_t kLongestPing = 120;

std::vector<PingGroup> groupPings(const std::vector<PingLine>& lines) {
  std::vector<PingGroup> groups;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0 && lines[i].start == lines[i - 1].start) {
      groups.back().last = i;
    } else {
      groups.push_back({i, i});
    }
  }
  return groups;
}

/// Whether a rate of a result, in its unit, can be that of a line: one rounds it, one cuts it.
bool showsRate(const std::optional<std::uint64_t>& shown, std::uint64_t unitBps,
               const Iperf3Line* line) {
  if (line == nullptr) {
    return true;
  }
  if (!shown) {
    return line->bps == 0;
  }
  const double least = static_cast<double>(*shown) * static_cast<double>(unitBps);
  return line->connected() && line->bps >= least - 1 &&
         line->bps <= least + static_cast<double>(unitBps);
}

bool isSoon(std::int64_t seconds) {
  return seconds >= 0 && seconds <= kLongestPing;
}

class Joiner {
 public:
  explicit Joiner(const Evidence& evidence)
      : evidence_(evidence),
        results_(evidence.results.all),
        tests_(pairTests(evidence)),
        groups_(groupPings(evidence.pings.all)) {
    for (std::size_t i = 0; i < results_.size(); ++i) {
      if (results_[i].date) {
        dated_.push_back(i);
      }
    }
  }

  /// Returns the runs in the order of the histories.
  std::vector<RunLines> join() const {
    const Alignment tests = alignTests();
    const Alignment groups = alignPings();
    std::vector<RunLines> finished(results_.size());
    for (std::size_t i = 0; i < results_.size(); ++i) {
      finished[i].result = i;
      finished[i].testDoubtful = tests.leftDoubtful[i];
      if (tests.ofLeft[i] != kAlone) {
        finished[i].test = tests_[tests.ofLeft[i]];
      }
    }
    for (std::size_t d = 0; d < dated_.size(); ++d) {
      finished[dated_[d]].pingsDoubtful = groups.leftDoubtful[d];
      if (groups.ofLeft[d] != kAlone) {
        finished[dated_[d]].pings = groups_[groups.ofLeft[d]];
      }
    }
    return insert(std::move(finished), endedRuns(tests, groups));
  }

 private:
  /// A run that was ended, and the place of the result before it, from 1 on; 0 without one.
  struct Ended {
    std::size_t after;
    RunLines lines;
  };

  const Iperf3Line* forward(const Test& test) const {
    return test.forward == kAlone ? nullptr : &evidence_.forward.all[test.forward];
  }
  const Iperf3Line* reverse(const Test& test) const {
    return test.reverse == kAlone ? nullptr : &evidence_.reverse.all[test.reverse];
  }

  bool agrees(std::size_t result, const Test& test) const {
    return showsRate(results_[result].write, results_[result].unitBps, forward(test)) &&
           showsRate(results_[result].read, results_[result].unitBps, reverse(test));
  }

  /// Whether the date of the result is the start of the forward test; nothing when one is missing.
  std::optional<bool> datesAgree(std::size_t result, const Test& test) const {
    const Iperf3Line* const line = forward(test);
    if (!results_[result].date || line == nullptr || !line->start) {
      return std::nullopt;
    }
    return std::abs(localTime(*line->start).seconds - results_[result].date->seconds) <=
           kSecondsOfDoubt;
  }

  int testCost(std::size_t result, const Test& test) const {
    if (!agrees(result, test)) {
      return kImpossible;
    }
    const int lost =
        (test.forward == kAlone ? kLineLost : 0) + (test.reverse == kAlone ? kLineLost : 0);
    return lost + (datesAgree(result, test).value_or(true) ? 0 : kClockWasSet);
  }

  bool isSureTest(std::size_t result, const Test& test) const {
    if (test.forward == kAlone || test.reverse == kAlone || !agrees(result, test)) {
      return false;
    }
    const ResultLine& line = results_[result];
    return datesAgree(result, test)
        .value_or(line.unitBps == 1 && line.write.value_or(0) > 0 && line.read.value_or(0) > 0);
  }

  Alignment alignTests() const {
    return align(
        {results_.size(), tests_.size(),
         [&](std::size_t r, std::size_t t) { return testCost(r, tests_[t]); },
         [&](std::size_t r) {
           return (results_[r].write ? kLineLost : 0) + (results_[r].read ? kLineLost : 0);
         },
         [&](std::size_t t) { return tests_[t].forward == kAlone ? kLineLost : kRunEndedBefore; },
         [&](std::size_t r, std::size_t t) { return isSureTest(r, tests_[t]); }});
  }

  /// The latency of a result is the last ping line's, without its fraction.
  bool hasLatency(std::size_t result, const PingGroup& group) const {
    // The line has rounded the average to thousandths.
    constexpr double kHalfThousandth = 0.0005;
    const double avg = evidence_.pings.all[group.last].avg;
    const double shown = results_[result].latencyMs.value_or(0);
    return !results_[result].latencyMs || !std::isfinite(avg) || std::trunc(avg) == shown ||
           std::trunc(avg - kHalfThousandth) == shown;
  }

  std::int64_t pingSeconds(std::size_t result, const PingGroup& group) const {
    return results_[result].date->seconds - evidence_.pings.all[group.first].start.seconds;
  }

  Alignment alignPings() const {
    return align(
        {dated_.size(), groups_.size(),
         [&](std::size_t d, std::size_t g) {
           if (!hasLatency(dated_[d], groups_[g])) {
             return kImpossible;
           }
           return isSoon(pingSeconds(dated_[d], groups_[g])) ? 0 : kClockWasSet;
         },
         [](std::size_t) { return kLineLost; }, [](std::size_t) { return kRunEndedBefore; },
         [&](std::size_t d, std::size_t g) {
           return hasLatency(dated_[d], groups_[g]) && isSoon(pingSeconds(dated_[d], groups_[g])) &&
                  (g + 1 == groups_.size() || pingSeconds(dated_[d], groups_[g + 1]) < 0);
         }});
  }

  std::vector<Ended> endedTests(const Alignment& tests) const {
    std::vector<Ended> ended;
    std::size_t after = 0;
    for (std::size_t t = 0; t < tests_.size(); ++t) {
      if (tests.ofRight[t] != kAlone) {
        after = tests.ofRight[t] + 1;
      } else {
        RunLines lines;
        lines.test = tests_[t];
        lines.testDoubtful = tests.rightDoubtful[t];
        ended.push_back({after, lines});
      }
    }
    return ended;
  }

  std::vector<Ended> endedPings(const Alignment& groups) const {
    std::vector<Ended> ended;
    std::size_t after = 0;
    for (std::size_t g = 0; g < groups_.size(); ++g) {
      if (groups.ofRight[g] != kAlone) {
        after = dated_[groups.ofRight[g]] + 1;
      } else {
        RunLines lines;
        lines.pings = groups_[g];
        lines.pingsDoubtful = groups.rightDoubtful[g];
        ended.push_back({after, lines});
      }
    }
    return ended;
  }

  bool startsSoonAfter(const Ended& test, const Ended& ping) const {
    const Iperf3Line* const line = forward(test.lines.test);
    return line != nullptr && line->start &&
           isSoon(localTime(*line->start).seconds -
                  evidence_.pings.all[ping.lines.pings->first].start.seconds);
  }

  /// Returns the runs without a result. A ping and a test of one run were written one after the
  /// other.
  std::vector<Ended> endedRuns(const Alignment& testsOfResults,
                               const Alignment& pingsOfResults) const {
    const std::vector<Ended> pings = endedPings(pingsOfResults);
    std::vector<Ended> ended = endedTests(testsOfResults);
    const Alignment pairs = align(
        {pings.size(), ended.size(),
         [&](std::size_t p, std::size_t t) {
           const Iperf3Line* const line = forward(ended[t].lines.test);
           const bool mayBe = line != nullptr && !line->start && pings[p].after <= ended[t].after;
           return startsSoonAfter(ended[t], pings[p]) ? 0 : mayBe ? kClockWasSet : kImpossible;
         },
         [](std::size_t) { return kRunEndedBefore; }, [](std::size_t) { return kRunEndedBefore; },
         [&](std::size_t p, std::size_t t) { return startsSoonAfter(ended[t], pings[p]); }});
    for (std::size_t p = 0; p < pings.size(); ++p) {
      if (pairs.ofLeft[p] == kAlone) {
        ended.push_back(pings[p]);
      } else {
        Ended& run = ended[pairs.ofLeft[p]];
        run.lines.pings = pings[p].lines.pings;
        run.lines.pingsDoubtful = pings[p].lines.pingsDoubtful || pairs.leftDoubtful[p];
        run.after = std::max(run.after, pings[p].after);
      }
    }
    std::ranges::stable_sort(ended, {}, &Ended::after);
    return ended;
  }

  static std::vector<RunLines> insert(std::vector<RunLines> finished,
                                      const std::vector<Ended>& ended) {
    if (ended.empty()) {
      return finished;
    }
    std::vector<RunLines> all;
    all.reserve(finished.size() + ended.size());
    auto next = ended.begin();
    for (std::size_t i = 0; i <= finished.size(); ++i) {
      for (; next != ended.end() && next->after == i; ++next) {
        all.push_back(next->lines);
      }
      if (i < finished.size()) {
        all.push_back(finished[i]);
      }
    }
    return all;
  }

  const Evidence& evidence_;
  const std::vector<ResultLine>& results_;
  std::vector<Test> tests_;
  std::vector<PingGroup> groups_;
  /// The results with a date.
  std::vector<std::size_t> dated_;
};

}  // namespace

std::vector<RunLines> joinLines(const Evidence& evidence) {
  return Joiner(evidence).join();
}

}  // namespace watch
