#include "runs/join.h"

#include "runs/journal.h"
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
        lines_(linesWithJournal(evidence)),
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
  static std::vector<RunLines> linesWithJournal(const Evidence& evidence) {
    std::vector<RunLines> lines = joinLines(evidence);
    placeJournal(evidence, lines);
    return lines;
  }

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
    takeJournal(i, run);
    run.write = judge(rateFacts({evidence_.forward, lines.forward, evidence_.forwardReport},
                                journalOf(i).write, run, result != nullptr && result->write));
    run.read = judge(rateFacts({evidence_.reverse, lines.reverse, evidence_.reverseReport},
                               journalOf(i).read, run, result != nullptr && result->read));
    takeTest(evidence_.reverse.all, lines.reverse, run, run.reverse);
    takeTest(evidence_.forward.all, lines.forward, run, run.forward);
    takePing(i, run);
    run.unsure = doubtsOf(i, run);
    run.pingUnsure = lines.pingsDoubtful || lines.resultDoubtful || lines.journalDoubtful ||
                     !doubtOfOutput(i).empty();
    run.ratesUnsure = lines.testsDoubtful || lines.resultDoubtful || lines.journalDoubtful;
    run.runClass = classOf(run);
    return run;
  }

  /// The run's line in the journal; an empty one where it has none.
  const JournalLine& journalOf(std::size_t i) const {
    static const JournalLine kNothing;
    return lines_[i].journal == kAlone ? kNothing : evidence_.journal[lines_[i].journal];
  }

  void takeJournal(std::size_t i, Run& run) const {
    const JournalLine& journal = journalOf(i);
    run.journal = journal.from;
    run.finished = run.finished || !journal.result.empty();
    run.ended = journal.ended;
    run.server = journal.address;
  }

  /// What a history tells of one test of a run.
  struct Test {
    const Lines<Iperf3Line>& history;
    std::size_t line;
    const std::optional<Iperf3Report>& latest;
  };

  static RateFacts rateFacts(const Test& test, const std::optional<JournalTest>& journal,
                             const Run& run, bool isShown) {
    RateFacts facts;
    if (journal) {
      facts.report = &journal->report;
      facts.said = journal->said;
    }
    if (test.line == kAlone) {
      facts.isLost = isShown || (run.finished && test.history.lacksFiles);
      return facts;
    }
    const std::vector<Iperf3Line>& lines = test.history.all;
    facts.line = &lines[test.line];
    facts.isRepeated = test.line > 0 && isSameTest(lines[test.line], lines[test.line - 1]);
    if (!journal && test.latest && test.line + 1 == lines.size() &&
        test.latest->start == facts.line->start &&
        test.latest->clientPort == facts.line->clientPort) {
      facts.report = &*test.latest;
    }
    return facts;
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
    const JournalLine& journal = journalOf(i);
    if (journal.ping) {
      facts.output = facts.output == nullptr ? outputOf(*journal.ping) : facts.output;
      facts.said = journal.ping->said;
    }
    facts.isOpen = outputs_.of[i].isOpen && !journal.isGuarded();
    facts.isOff = journal.settings ? !journal.settings->doPingTests
                                   : !evidence_.keepsOutputs && evidence_.pings.all.empty();
    run.ping = judge(facts);
  }

  /// Null when ping has printed nothing that begins as its output does.
  static const PingOutput* outputOf(const JournalPing& ping) {
    return ping.output.target.empty() ? nullptr : &ping.output;
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
    constexpr std::size_t kFew = 3;
    const PingOutput& now = evidence_.outputs[output];
    return output > 0 && now.replies.size() >= kFew &&
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
    add(lines_[i].journalDoubtful, "its line in the journal could be that of a run beside it");
    add(!doubtOfOutput(i).empty(), doubtOfOutput(i));
    return doubts;
  }

  /// The journal knows what ping has printed, or that it has printed nothing.
  std::string doubtOfOutput(std::size_t i) const {
    const JournalLine& journal = journalOf(i);
    return journal.isGuarded() || journal.ping ? "" : outputs_.of[i].doubt;
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
    run->ongoing = run->ended.empty() && run->time && *run->time <= now &&
                   now < *run->time + kLongestRun && !hasEnded(*run->time, endedRun);
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
