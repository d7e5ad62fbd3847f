#include "runs/tests.h"

namespace watch {

namespace {

/// What it costs to take a line for one whose partner is missing. A run that was ended leaves a
/// forward line alone; a reverse line is alone only when the forward one was lost.
constexpr int kForwardAlone = 10;
constexpr int kReverseAlone = 30;
/// Only one of the two tests came about.
constexpr int kOneFailed = 1;
/// The clock was set in between.
constexpr int kClockWasSet = 40;

/// A reverse test begins when the forward one has ended, at its limit at the latest, and the tester
/// has waited. A minute is the iperf3 adapter's limit beyond the time of a test; connecting may
/// take two more.
bool followsSoon(const Iperf3Line& forward, const Iperf3Line& reverse) {
  constexpr EpochSeconds kLimits = 240;
  const EpochSeconds duration = forward.duration.value_or(0);
  const EpochSeconds apart = *reverse.start - *forward.start;
  return apart >= duration && apart <= 2 * duration + kLimits;
}

class Pairing {
 public:
  explicit Pairing(const Evidence& evidence)
      : forward_(evidence.forward.all), reverse_(evidence.reverse.all) {}

  int cost(std::size_t f, std::size_t r) const {
    const bool began = forward_[f].start.has_value();
    if (began != reverse_[r].start.has_value()) {
      return kOneFailed;
    }
    return !began || followsSoon(forward_[f], reverse_[r]) ? 0 : kClockWasSet;
  }

  bool isSure(std::size_t f, std::size_t r) const {
    if (!forward_[f].start || !reverse_[r].start || !followsSoon(forward_[f], reverse_[r])) {
      return false;
    }
    return f + 1 == forward_.size() ||
           (forward_[f + 1].start && !followsSoon(forward_[f + 1], reverse_[r]) &&
            *forward_[f + 1].start > *reverse_[r].start);
  }

 private:
  const std::vector<Iperf3Line>& forward_;
  const std::vector<Iperf3Line>& reverse_;
};

}  // namespace

std::vector<Test> pairTests(const Evidence& evidence) {
  const Pairing pairing(evidence);
  const Alignment pairs =
      align({evidence.forward.all.size(), evidence.reverse.all.size(),
             [&](std::size_t f, std::size_t r) { return pairing.cost(f, r); },
             [](std::size_t) { return kForwardAlone; }, [](std::size_t) { return kReverseAlone; },
             [&](std::size_t f, std::size_t r) { return pairing.isSure(f, r); }});
  std::vector<Test> tests;
  tests.reserve(pairs.ofLeft.size());
  std::size_t reverse = 0;
  const auto addReverseBefore = [&](std::size_t end) {
    for (; reverse < end; ++reverse) {
      tests.push_back({kAlone, reverse});
    }
  };
  for (std::size_t forward = 0; forward < pairs.ofLeft.size(); ++forward) {
    const std::size_t partner = pairs.ofLeft[forward];
    if (partner != kAlone) {
      addReverseBefore(partner);
      ++reverse;
    }
    tests.push_back({forward, partner});
  }
  addReverseBefore(pairs.ofRight.size());
  return tests;
}

}  // namespace watch
