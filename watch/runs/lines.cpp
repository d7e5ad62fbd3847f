#include "runs/lines.h"

#include "runs/journal.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <utility>

namespace watch {

namespace {

/// What a run costs that is other than one that came to its end, by how rare that is.
constexpr int kRunEndedBefore = 10;
constexpr int kLineLost = 20;
constexpr int kTimesDisagree = 12;
constexpr int kLineRepeated = 5;

/// The order in which a run writes its lines.
enum Sequence : std::size_t { kPing, kForward, kReverse, kResult, kSequences };
using LinePlaces = Places<kSequences>;
constexpr Members kAllSequences = (1U << kSequences) - 1;

constexpr Members member(Sequence sequence) {
  return 1U << sequence;
}

/// iperf3 connects in a moment, or waits for an answer for two minutes.
constexpr std::int64_t kLongestConnecting = 130;
/// A clock that is read twice shows two seconds, or the first reading is that of a second before.
constexpr std::int64_t kSecondsOfDoubt = 2;
/// A ping of ten with the adapter's limits takes 50 s at most; more pings take longer.
constexpr std::int64_t kLongestPing = 120;
/// An hour of a test and its limits; longer ones are no sure sign.
constexpr std::int64_t kLongestTest = 4000;

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

/// When a test was: from when to when it may have begun.
struct Span {
  LocalTime first;
  LocalTime last;
};

/// A line without a start has a time when its run moved it to the archive: the stamp is the start
/// of that run, or a moment in it.
std::vector<std::optional<Span>> spansOf(const Lines<Iperf3Line>& lines) {
  constexpr std::int64_t kLongestRun = 300;
  std::vector<std::optional<Span>> spans(lines.all.size());
  for (const Filled& archive : lines.filled) {
    spans[archive.line] = Span{archive.stamp, {archive.stamp.seconds + kLongestRun}};
  }
  for (std::size_t i = 0; i < spans.size(); ++i) {
    if (lines.all[i].start) {
      const LocalTime start = localTime(*lines.all[i].start);
      spans[i] = Span{start, start};
    }
  }
  return spans;
}

/// Whether a rate of a result, in its unit, can be that of a line: one rounds it, one cuts it.
bool showsRate(const std::optional<std::uint64_t>& shown, std::uint64_t unitBps,
               const Iperf3Line& line) {
  if (!shown) {
    return line.bps == 0;
  }
  const double least = static_cast<double>(*shown) * static_cast<double>(unitBps);
  return line.connected() && line.bps >= least - 1 &&
         line.bps <= least + static_cast<double>(unitBps);
}

bool isWithin(std::int64_t seconds, std::int64_t least, std::int64_t most) {
  return seconds >= least && seconds <= most;
}

/// A reverse test begins when the forward one has ended, at its limit at the latest, and the tester
/// has waited. A minute is the iperf3 adapter's limit beyond the time of a test; connecting may
/// take two more.
bool followsSoon(const Iperf3Line& forward, const Iperf3Line& reverse) {
  constexpr EpochSeconds kLimits = 240;
  const EpochSeconds duration = forward.duration.value_or(0);
  return isWithin(*reverse.start - *forward.start, duration, 2 * duration + kLimits);
}

/// Lines by their times, whatever their order.
class ByTime {
 public:
  template <class TimeOf>
  ByTime(std::size_t length, TimeOf timeOf) {
    for (std::size_t i = 0; i < length; ++i) {
      if (const std::optional<std::int64_t> time = timeOf(i)) {
        lines_.emplace_back(*time, i);
      }
    }
    std::ranges::sort(lines_);
  }

  /// Returns the line of these seconds, not before the place `from`, of which alone `isSought` is
  /// true.
  template <class IsSought>
  std::optional<std::size_t> findOnly(std::int64_t first, std::int64_t last, std::size_t from,
                                      IsSought isSought) const {
    std::optional<std::size_t> found;
    for (auto line = std::ranges::lower_bound(lines_, std::pair(first, std::size_t{0}));
         line != lines_.end() && line->first <= last; ++line) {
      if (line->second < from || !isSought(line->second)) {
        continue;
      }
      if (found) {
        return std::nullopt;
      }
      found = line->second;
    }
    return found;
  }

 private:
  std::vector<std::pair<std::int64_t, std::size_t>> lines_;
};

/// How many elements before each place are of a kind.
class Count {
 public:
  template <class IsCounted>
  Count(std::size_t length, IsCounted isCounted) : before_(length + 1) {
    for (std::size_t i = 0; i < length; ++i) {
      before_[i + 1] = before_[i] + (isCounted(i) ? 1 : 0);
    }
  }
  int between(std::size_t first, std::size_t end) const { return before_[end] - before_[first]; }

 private:
  std::vector<int> before_;
};

class LineJoiner {
 public:
  explicit LineJoiner(const Evidence& evidence)
      : evidence_(evidence),
        journal_(evidence.journal),
        forward_(evidence.forward.all),
        reverse_(evidence.reverse.all),
        results_(evidence.results.all),
        groups_(groupPings(evidence.pings.all)),
        forwardSpans_(spansOf(evidence.forward)),
        forwardByTime_(forward_.size(),
                       [&](std::size_t i) {
                         return forward_[i].start ? std::optional(forwardSpans_[i]->first.seconds)
                                                  : std::nullopt;
                       }),
        reverseByTime_(reverse_.size(), [&](std::size_t i) { return reverse_[i].start; }),
        pingsByTime_(groups_.size(),
                     [&](std::size_t i) { return std::optional(startOf(groups_[i]).seconds); }),
        dated_(results_.size(), [&](std::size_t i) { return results_[i].date.has_value(); }),
        showWrite_(results_.size(), [&](std::size_t i) { return results_[i].write.has_value(); }),
        showRead_(results_.size(), [&](std::size_t i) { return results_[i].read.has_value(); }) {}

  std::vector<RunLines> join() const {
    const Costs<kSequences> costs = {
        {groups_.size(), forward_.size(), reverse_.size(), results_.size()},
        [&](Members members, const LinePlaces& at) { return costOf(members, at); },
        [&](const LinePlaces& from, const LinePlaces& end) { return costAtLeast(from, end); },
        [&](const LinePlaces& from) { return nextSureRun(from); }};
    std::vector<RunLines> runs;
    runs.reserve(results_.size());
    for (const Row<kSequences>& row : align(costs)) {
      runs.push_back(linesOf(row));
    }
    placeByTime(runs);
    return runs;
  }

 private:
  RunLines linesOf(const Row<kSequences>& row) const {
    RunLines run;
    if (row.places[kPing] != kAlone) {
      run.pings = groups_[row.places[kPing]];
    }
    run.forward = row.places[kForward];
    run.reverse = row.places[kReverse];
    run.result = row.places[kResult];
    run.journal = *journalOf(row.places);
    run.pingsDoubtful = (row.doubtful & member(kPing)) != 0;
    run.testsDoubtful = (row.doubtful & (member(kForward) | member(kReverse))) != 0;
    run.resultDoubtful = (row.doubtful & member(kResult)) != 0;
    return run;
  }

  /// Nothing but the time tells where a run was that has left only a ping line, beside runs that
  /// have left none.
  void placeByTime(std::vector<RunLines>& runs) const {
    for (std::size_t i = 1; i < runs.size(); ++i) {
      for (std::size_t place = i; place > 0 && isWrongOrder(runs[place - 1], runs[place]);
           --place) {
        std::swap(runs[place - 1], runs[place]);
      }
    }
  }

  bool isWrongOrder(const RunLines& one, const RunLines& next) const {
    if (one.pings && one.isPingAlone() && !next.pings) {
      const auto test = startOf(next);
      return test && *test < startOf(*one.pings);
    }
    if (next.pings && next.isPingAlone() && !one.pings) {
      const auto test = startOf(one);
      return test && startOf(*next.pings) < *test;
    }
    return false;
  }

  LocalTime startOf(const PingGroup& pings) const { return evidence_.pings.all[pings.first].start; }
  std::optional<LocalTime> startOf(const RunLines& run) const {
    return run.forward != kAlone && forwardSpans_[run.forward]
               ? std::optional(forwardSpans_[run.forward]->first)
               : std::nullopt;
  }

  /// Returns the line of the journal that lines at `at` lead to, of those that are not kAlone;
  /// kAlone when there is none, and nothing when they lead to more than one.
  std::optional<std::size_t> journalOf(const LinePlaces& at) const {
    std::size_t found = kAlone;
    for (const std::size_t line :
         {at[kPing] == kAlone ? kAlone : journal_.ofPing(startOf(groups_[at[kPing]])),
          at[kForward] == kAlone ? kAlone : journal_.ofForward(forward_[at[kForward]]),
          at[kReverse] == kAlone ? kAlone : journal_.ofReverse(reverse_[at[kReverse]]),
          at[kResult] == kAlone ? kAlone : journal_.ofResult(results_[at[kResult]])}) {
      if (line != kAlone && found != kAlone && line != found) {
        return std::nullopt;
      }
      found = line == kAlone ? found : line;
    }
    return found;
  }

  /// The places of `members` alone.
  static LinePlaces placesOf(Members members, LinePlaces at) {
    for (std::size_t n = 0; n < at.size(); ++n) {
      at[n] = (members >> n & 1U) != 0 ? at[n] : kAlone;
    }
    return at;
  }

  int costOf(Members members, const LinePlaces& at) const {
    const auto line = journalOf(placesOf(members, at));
    return line ? sum({costOfLines(members, at), costByJournal(members, *line)}) : kImpossible;
  }

  int costOfLines(Members members, const LinePlaces& at) const {
    const std::optional<std::size_t> ping = placeOf(kPing, members, at);
    const std::optional<std::size_t> forward = placeOf(kForward, members, at);
    const std::optional<std::size_t> reverse = placeOf(kReverse, members, at);
    const int both = forward && reverse ? bothDirections(*forward, *reverse) : 0;
    if (const auto result = placeOf(kResult, members, at)) {
      const bool hadTests = forward || reverse;
      return sum({both, pingOfResult(ping, *result),
                  rateOfResult(forward_, forward, results_[*result].write, *result, hadTests),
                  rateOfResult(reverse_, reverse, results_[*result].read, *result, hadTests),
                  forward ? dateOfTest(ping, *forward, *result) : 0});
    }
    return sum({both, kRunEndedBefore, reverse && !forward ? kLineLost : 0,
                ping && forward ? pingOfTest(*ping, *forward) : 0});
  }

  /// Of a run that came to its end, the journal tells which lines it has written.
  int costByJournal(Members members, std::size_t place) const {
    if (place == kAlone || evidence_.journal[place].result.empty() ||
        !evidence_.journal[place].settings) {
      return 0;
    }
    const bool hasTests = evidence_.journal[place].settings->doIperf3Tests;
    const bool hasPing = evidence_.journal[place].ping && evidence_.journal[place].ping->start;
    const Members written = member(kResult) | (hasPing ? member(kPing) : 0U) |
                            (hasTests ? member(kForward) | member(kReverse) : 0U);
    return kLineLost * std::popcount(written ^ members);
  }

  static int sum(std::initializer_list<int> costs) {
    int all = 0;
    for (const int cost : costs) {
      if (cost == kImpossible) {
        return kImpossible;
      }
      all += cost;
    }
    return all;
  }

  static std::optional<std::size_t> placeOf(Sequence sequence, Members members,
                                            const LinePlaces& at) {
    return (members & member(sequence)) != 0 ? std::optional(at[sequence]) : std::nullopt;
  }

  // What the parts of a run cost.

  int pingOfResult(std::optional<std::size_t> ping, std::size_t result) const {
    if (!results_[result].date) {
      return ping ? kImpossible : 0;
    }
    if (!ping) {
      return kLineLost;
    }
    if (!hasLatency(result, groups_[*ping])) {
      return kImpossible;
    }
    return isWithin(pingSeconds(*ping, *results_[result].date), 0, kLongestPing) ? 0
                                                                                 : kTimesDisagree;
  }

  int rateOfResult(const std::vector<Iperf3Line>& lines, std::optional<std::size_t> line,
                   const std::optional<std::uint64_t>& shown, std::size_t result,
                   bool hadTests) const {
    if (!line) {
      return shown || hadTests ? kLineLost : 0;
    }
    if (showsRate(shown, results_[result].unitBps, lines[*line])) {
      return 0;
    }
    return isRepeated(lines, *line) ? kLineRepeated : kImpossible;
  }

  /// A stamp is that of the run's start, unlike the start of a test: the machine may have slept
  /// before the date.
  int dateOfTest(std::optional<std::size_t> ping, std::size_t forward, std::size_t result) const {
    const std::optional<Span>& test = forwardSpans_[forward];
    if (!results_[result].date || !test || isRepeated(forward_, forward) ||
        canBe(*results_[result].date, *test, -kSecondsOfDoubt, kLongestConnecting)) {
      return 0;
    }
    const bool isStamp = !forward_[forward].start;
    return isStamp && ping && canBe(startOf(groups_[*ping]), *test, 0, kLongestPing)
               ? 0
               : kTimesDisagree;
  }

  /// Without a time of the test, two runs that were ended are as likely as one.
  int pingOfTest(std::size_t ping, std::size_t forward) const {
    if (!forwardSpans_[forward]) {
      return kRunEndedBefore;
    }
    return canBe(startOf(groups_[ping]), *forwardSpans_[forward], 0,
                 kLongestPing + kLongestConnecting)
               ? 0
               : kImpossible;
  }

  /// Whether a test began from `least` to `most` seconds after `moment`.
  static bool canBe(LocalTime moment, const Span& test, std::int64_t least, std::int64_t most) {
    return test.last.seconds >= moment.seconds + least &&
           test.first.seconds <= moment.seconds + most;
  }

  int bothDirections(std::size_t forward, std::size_t reverse) const {
    if (!forward_[forward].start || !reverse_[reverse].start || isRepeated(forward_, forward) ||
        isRepeated(reverse_, reverse)) {
      return 0;
    }
    return followsSoon(forward_[forward], reverse_[reverse]) ? 0 : kTimesDisagree;
  }

  /// A run that could not replace the line of its test has added that of the run before once more.
  static bool isRepeated(const std::vector<Iperf3Line>& lines, std::size_t line) {
    return line > 0 && isSameTest(lines[line], lines[line - 1]);
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

  std::int64_t pingSeconds(std::size_t ping, LocalTime until) const {
    return until.seconds - startOf(groups_[ping]).seconds;
  }

  /// More tests than results, or more pings than results with a date, are of runs that were ended;
  /// fewer are lost.
  int costAtLeast(const LinePlaces& from, const LinePlaces& end) const {
    const auto left = [&](Sequence sequence) {
      return static_cast<int>(end[sequence] - from[sequence]);
    };
    const auto count = [&](const Count& counted) {
      return counted.between(from[kResult], end[kResult]);
    };
    const int ended = std::max({left(kForward) - left(kResult), left(kReverse) - left(kResult),
                                left(kPing) - count(dated_), 0});
    const int lost = std::max(count(dated_) - left(kPing), 0) +
                     std::max(count(showWrite_) - left(kForward), 0) +
                     std::max(count(showRead_) - left(kReverse), 0);
    return kRunEndedBefore * ended + kLineLost * lost;
  }

  // Runs beyond doubt: both tests have a rate, all times and figures agree, and no line near does
  // as well.

  using SureRun = SureRow<kSequences>;

  /// The next lines of all histories are mostly those of such a run. Lines further on have to be
  /// followed by those of another one: a wrong clock can make one agree by chance.
  std::optional<SureRun> nextSureRun(const LinePlaces& from) const {
    if (const std::optional<SureRun> next = sureRunAt(from, from)) {
      return next;
    }
    for (std::size_t result = from[kResult]; result < results_.size(); ++result) {
      const std::optional<SureRun> run = sureRunOf(result, from);
      if (run && sureRunAt(behind(run->members, run->places), from)) {
        return run;
      }
    }
    return std::nullopt;
  }

  /// Returns the run whose lines begin at `at`.
  std::optional<SureRun> sureRunAt(const LinePlaces& at, const LinePlaces& from) const {
    const auto run = at[kResult] < results_.size() ? sureRunOf(at[kResult], from) : std::nullopt;
    return run && run->places == at ? run : std::nullopt;
  }

  std::optional<SureRun> sureRunOf(std::size_t result, const LinePlaces& from) const {
    const ResultLine& line = results_[result];
    if (line.write.value_or(0) == 0 || line.read.value_or(0) == 0) {
      return std::nullopt;
    }
    const auto forward = sureForward(result, from);
    const auto reverse = forward ? sureReverse(result, *forward, from) : std::nullopt;
    const auto ping = !reverse    ? std::nullopt
                      : line.date ? surePing(result, from)
                                  : firstPingBehind(*forward, from[kPing]);
    if (!ping) {
      return std::nullopt;
    }
    const SureRun run = {line.date ? kAllSequences : kAllSequences & ~member(kPing),
                         {*ping, *forward, *reverse, result}};
    return journalOf(placesOf(run.members, run.places)) ? std::optional(run) : std::nullopt;
  }

  /// By the date, or near the place where it is expected. A whole unit is no rare figure: there it
  /// has to be nearer.
  std::optional<std::size_t> sureForward(std::size_t result, const LinePlaces& from) const {
    constexpr std::size_t kReach = 16;
    constexpr std::size_t kShortReach = 4;
    const ResultLine& line = results_[result];
    const auto isSought = [&](std::size_t i) {
      return forward_[i].start && showsRate(line.write, line.unitBps, forward_[i]);
    };
    if (line.date) {
      return forwardByTime_.findOnly(line.date->seconds - kSecondsOfDoubt,
                                     line.date->seconds + kSecondsOfDoubt, from[kForward],
                                     isSought);
    }
    return findOnly(from[kForward] + (result - from[kResult]), from[kForward], forward_.size(),
                    line.unitBps == 1 ? kReach : kShortReach, isSought);
  }

  std::optional<std::size_t> sureReverse(std::size_t result, std::size_t forward,
                                         const LinePlaces& from) const {
    const ResultLine& line = results_[result];
    const EpochSeconds start = *forward_[forward].start;
    return reverseByTime_.findOnly(start, start + kLongestTest, from[kReverse], [&](std::size_t i) {
      return followsSoon(forward_[forward], reverse_[i]) &&
             showsRate(line.read, line.unitBps, reverse_[i]);
    });
  }

  std::optional<std::size_t> surePing(std::size_t result, const LinePlaces& from) const {
    const std::int64_t date = results_[result].date->seconds;
    return pingsByTime_.findOnly(date - kLongestPing, date, from[kPing],
                                 [&](std::size_t i) { return hasLatency(result, groups_[i]); });
  }

  /// Returns the first ping that began behind a test without one.
  std::optional<std::size_t> firstPingBehind(std::size_t forward, std::size_t from) const {
    std::size_t ping = from;
    while (ping < groups_.size() && startOf(groups_[ping]) < forwardSpans_[forward]->first) {
      ++ping;
    }
    return ping;
  }

  const Evidence& evidence_;
  JournalKeys journal_;
  const std::vector<Iperf3Line>& forward_;
  const std::vector<Iperf3Line>& reverse_;
  const std::vector<ResultLine>& results_;
  std::vector<PingGroup> groups_;
  std::vector<std::optional<Span>> forwardSpans_;
  ByTime forwardByTime_;
  ByTime reverseByTime_;
  ByTime pingsByTime_;
  Count dated_;
  Count showWrite_;
  Count showRead_;
};

}  // namespace

std::vector<RunLines> joinLines(const Evidence& evidence) {
  return LineJoiner(evidence).join();
}

}  // namespace watch
