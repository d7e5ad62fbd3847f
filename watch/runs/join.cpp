#include "runs/join.h"

#include "runs/lines.h"
#include "runs/outputs.h"
#include "runs/states.h"
#include "runs/times.h"

#include <algorithm>
#include <utility>

namespace watch {

namespace {

class RunMaker {
 public:
  explicit RunMaker(const Evidence& evidence)
      : evidence_(evidence),
        lines_(joinLines(evidence)),
        times_(timesOfRuns(evidence, lines_)),
        outputs_(joinOutputs(evidence, lines_, times_)) {}

  /// Returns the runs in the order in which they wrote.
  std::vector<Run> make() {
    std::vector<Run> runs;
    runs.reserve(lines_.size() + outputs_.orphans.size());
    auto orphan = outputs_.orphans.begin();
    for (std::size_t i = 0; i <= lines_.size(); ++i) {
      for (; orphan != outputs_.orphans.end() && orphan->before == i; ++orphan) {
        runs.push_back(makeOrphan(*orphan));
      }
      if (i < lines_.size()) {
        runs.push_back(makeRun(i));
      }
    }
    return runs;
  }

 private:
  Run makeOrphan(const OrphanOutput& orphan) const {
    const PingOutput& output = evidence_.outputs[orphan.output];
    Run run;
    run.orphan = true;
    run.unsure = orphan.doubt;
    run.ping = judge(PingFacts{.output = &output});
    run.write.state = RateState::off;
    run.read.state = RateState::off;
    run.outputs.push_back(output.from);
    run.runClass = classOf(run);
    return run;
  }

  Run makeRun(std::size_t i) {
    const RunLines& lines = lines_[i];
    Run run;
    run.time = times_[i].start;
    run.timeSource = times_[i].source;
    run.foldUnresolved = times_[i].foldUnresolved;
    const ResultLine* const result =
        lines.result == kAlone ? nullptr : &evidence_.results.all[lines.result];
    run.finished = result != nullptr;
    if (result != nullptr) {
      run.result = result->from;
      run.unitBps = result->unitBps;
    }
    run.write = judge(rateFacts(evidence_.forward.all, lines.forward, evidence_.forwardReport,
                                result != nullptr && result->write));
    run.read = judge(rateFacts(evidence_.reverse.all, lines.reverse, evidence_.reverseReport,
                               result != nullptr && result->read));
    takeTest(evidence_.reverse.all, lines.reverse, run, run.reverse);
    takeTest(evidence_.forward.all, lines.forward, run, run.forward);
    takePing(i, run);
    run.unsure = doubtsOf(i, run);
    run.pingUnsure = lines.pingsDoubtful || lines.resultDoubtful || !outputs_.of[i].doubt.empty();
    run.ratesUnsure = lines.testsDoubtful || lines.resultDoubtful;
    run.runClass = classOf(run);
    return run;
  }

  static RateFacts rateFacts(const std::vector<Iperf3Line>& history, std::size_t line,
                             const std::optional<Iperf3Report>& latest, bool isShown) {
    if (line == kAlone) {
      return {nullptr, nullptr, false, isShown};
    }
    const bool isLatest = latest && line + 1 == history.size() &&
                          latest->start == history[line].start &&
                          latest->clientPort == history[line].clientPort;
    return {&history[line], isLatest ? &*latest : nullptr,
            line > 0 && isSameTest(history[line], history[line - 1]), isShown};
  }

  static void takeTest(const std::vector<Iperf3Line>& history, std::size_t line, Run& run,
                       Source& from) {
    if (line == kAlone) {
      return;
    }
    from = history[line].from;
    if (history[line].connected()) {
      run.client = history[line].client;
      run.server = history[line].server;
    }
  }

  void takePing(std::size_t i, Run& run) {
    PingFacts facts;
    if (lines_[i].pings) {
      const auto [first, last] = *lines_[i].pings;
      facts.line = &evidence_.pings.all[last];
      for (std::size_t line = first; line <= last; ++line) {
        run.pings.push_back(evidence_.pings.all[line].from);
      }
    }
    for (const std::size_t output : outputs_.of[i].outputs) {
      addSource(evidence_.outputs[output].from, run.outputs);
    }
    if (!outputs_.of[i].outputs.empty()) {
      const std::size_t output = outputs_.of[i].outputs.back();
      facts.output = &evidence_.outputs[output];
      facts.isRepeated = isRepeated(output);
    }
    facts.isOpen = outputs_.of[i].isOpen;
    facts.isOff = !evidence_.keepsOutputs && evidence_.pings.all.empty();
    run.ping = judge(facts);
  }

  /// Neighbours of one file become one source.
  static void addSource(const Source& from, std::vector<Source>& sources) {
    if (!sources.empty() && sources.back().file == from.file &&
        sources.back().last + 1 == from.first) {
      sources.back().last = from.last;
    } else {
      sources.push_back(from);
    }
  }

  /// The very same times in the same order do not come twice by chance, but for a few coarse ones.
  bool isRepeated(std::size_t output) const {
    constexpr std::uint32_t kFew = 3;
    const PingOutput& now = evidence_.outputs[output];
    return output > 0 && now.replies >= kFew &&
           now.fingerprint == evidence_.outputs[output - 1].fingerprint &&
           now.replies == evidence_.outputs[output - 1].replies &&
           now.target == evidence_.outputs[output - 1].target;
  }

  std::string doubtsOf(std::size_t i, const Run& run) const {
    std::string doubts;
    const auto add = [&](bool applies, const std::string& doubt) {
      if (applies) {
        doubts += (doubts.empty() ? "" : "; ") + doubt;
      }
    };
    add(lines_[i].testsDoubtful, "its iperf3 lines could be those of a run beside it");
    add(lines_[i].pingsDoubtful, "its ping line could be that of a run beside it");
    add(lines_[i].resultDoubtful, "its result could be that of a run beside it");
    add(run.write.state == RateState::unknown || run.read.state == RateState::unknown,
        "a line of its history is lost");
    add(!outputs_.of[i].doubt.empty(), outputs_.of[i].doubt);
    return doubts;
  }

  const Evidence& evidence_;
  std::vector<RunLines> lines_;
  std::vector<RunTime> times_;
  OutputsOfRuns outputs_;
};

/// Whether that run took the lock that is free again: its first line is written soon, or behind a
/// ping that waits for its limit in vain.
bool hasEnded(EpochSeconds time, std::optional<EpochSeconds> endedRun) {
  constexpr EpochSeconds kLongestPing = 60;
  return endedRun && *endedRun <= time && time <= *endedRun + kLongestPing;
}

/// Marks the runs that have written last and that may still go on. Longer than these minutes takes
/// only a run whose settings ask for it, or one that hangs; the usual ones take less than four.
void markOngoing(std::vector<Run>& runs, EpochSeconds now, std::optional<EpochSeconds> endedRun) {
  constexpr EpochSeconds kLongestRun = 600;
  for (auto run = runs.rbegin(); run != runs.rend() && !run->finished; ++run) {
    run->ongoing = run->time && *run->time <= now && now < *run->time + kLongestRun &&
                   !hasEnded(*run->time, endedRun);
  }
}

/// A run without a time keeps its place behind that before it.
void sortByTime(std::vector<Run>& runs) {
  std::vector<std::pair<EpochSeconds, std::size_t>> order;
  order.reserve(runs.size());
  EpochSeconds latest = std::numeric_limits<EpochSeconds>::min();
  for (std::size_t i = 0; i < runs.size(); ++i) {
    latest = runs[i].time.value_or(latest);
    order.emplace_back(latest, i);
  }
  if (std::ranges::is_sorted(order)) {
    return;
  }
  std::ranges::sort(order);
  std::vector<Run> sorted;
  sorted.reserve(runs.size());
  for (const auto& [time, place] : order) {
    sorted.push_back(std::move(runs[place]));
  }
  runs = std::move(sorted);
}

}  // namespace

std::vector<Run> joinRuns(const Evidence& evidence, std::optional<EpochSeconds> now) {
  std::vector<Run> runs = RunMaker(evidence).make();
  if (now) {
    markOngoing(runs, *now, evidence.endedRun);
  }
  sortByTime(runs);
  return runs;
}

}  // namespace watch
