#include "runs/outputs.h"

#include "runs/alignment.h"
#include "runs/rhythm.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <optional>
#include <span>
#include <utility>

namespace watch {

namespace {

constexpr int kLineLost = 20;
constexpr Members kBoth = 3;
/// How far from its expected place an output is looked for.
constexpr std::size_t kReach = 16;
// Of a run without a ping line and an output that the tester has not read, what is missing.
constexpr int kNoOutput = 10;
constexpr int kRunEndedInRoom = 8;
constexpr int kRunEndedLast = 9;
constexpr int kRunEndedWithoutRoom = 10;

bool isSameNumber(double one, double other) {
  // The line has rounded it to thousandths.
  constexpr double kThousandth = 0.00051;
  return (std::isnan(one) && std::isnan(other)) || std::abs(one - other) < kThousandth;
}

bool hasNumbersOf(const PingLine& line, const PingOutput& output) {
  return output.summaryIsWhole && isSameNumber(line.min, output.summary->min) &&
         isSameNumber(line.avg, output.summary->avg) &&
         isSameNumber(line.max, output.summary->max) &&
         isSameNumber(line.stddev, output.summary->stddev);
}

class OutputJoiner {
 public:
  OutputJoiner(const Evidence& evidence, const std::vector<RunLines>& runs,
               const std::vector<RunTime>& times)
      : evidence_(evidence),
        runs_(runs),
        times_(times),
        rhythm_(rhythmOf(times)),
        rooms_(countRooms()) {
    joined_.of.resize(runs.size());
    for (std::size_t i = 0; i < evidence.outputs.size(); ++i) {
      if (evidence.outputs[i].summaryIsRead) {
        read_.push_back(i);
      }
    }
  }

  OutputsOfRuns join() {
    const std::vector<std::size_t> owners = ownersByNumbers();
    Gap gap = {0, 0, {}, {}};
    for (std::size_t i = 0; i < owners.size(); ++i) {
      if (owners[i] == kAlone) {
        gap.outputs.push_back(i);
        continue;
      }
      joined_.of[owners[i]].outputs.push_back(i);
      if (hasFirmPlace(owners[i])) {
        gap.runEnd = owners[i];
        join(std::exchange(gap, {std::max(gap.run, owners[i] + 1), 0, {}, {}}));
      }
    }
    gap.runEnd = runs_.size();
    join(std::move(gap));
    return std::move(joined_);
  }

 private:
  /// Returns the run of each output whose ping line has its numbers.
  std::vector<std::size_t> ownersByNumbers() const {
    std::vector<std::size_t> runOf(evidence_.pings.all.size(), kAlone);
    for (std::size_t run = 0; run < runs_.size(); ++run) {
      if (runs_[run].pings) {
        std::fill(runOf.begin() + static_cast<std::ptrdiff_t>(runs_[run].pings->first),
                  runOf.begin() + static_cast<std::ptrdiff_t>(runs_[run].pings->last) + 1, run);
      }
    }
    std::vector<std::size_t> owners(evidence_.outputs.size(), kAlone);
    for (const Row<2>& row : alignOutputs()) {
      if (row.places[0] != kAlone && row.places[1] != kAlone) {
        owners[read_[row.places[1]]] = runOf[row.places[0]];
      }
    }
    return owners;
  }

  /// Lays the outputs that the tester has read beside its lines.
  std::vector<Row<2>> alignOutputs() const {
    return align(Costs<2>{{evidence_.pings.all.size(), read_.size()},
                          [&](Members members, const Places<2>& at) {
                            return members == kBoth ? costOfPair(at) : kLineLost;
                          },
                          [](const Places<2>& from, const Places<2>& end) {
                            const auto lefts = static_cast<int>(end[0] - from[0]);
                            const auto rights = static_cast<int>(end[1] - from[1]);
                            return kLineLost * std::abs(lefts - rights);
                          },
                          [&](const Places<2>& from) { return nextSurePair(from); }});
  }

  // Of a line and an output that was read.

  const PingLine& lineAt(std::size_t i) const { return evidence_.pings.all[i]; }
  const PingOutput& readAt(std::size_t i) const { return evidence_.outputs[read_[i]]; }

  /// A summary that is not four numbers is recorded as zeros, or as the one before it.
  int costOfPair(const Places<2>& at) const {
    return !readAt(at[1]).summaryIsWhole || hasNumbersOf(lineAt(at[0]), readAt(at[1]))
               ? 0
               : kImpossible;
  }

  std::optional<SureRow<2>> nextSurePair(const Places<2>& from) const {
    for (std::size_t line = from[0]; line < evidence_.pings.all.size(); ++line) {
      const auto isIts = [&](std::size_t i) {
        return !lineAt(line).isZeros() && hasNumbersOf(lineAt(line), readAt(i));
      };
      if (const auto found =
              findOnly(from[1] + (line - from[0]), from[1], read_.size(), kReach, isIts)) {
        return SureRow<2>{kBoth, {line, *found}};
      }
    }
    return std::nullopt;
  }

  /// Whether a run is known to be before or after each run that has left no ping line. One that has
  /// left nothing else is so by the times alone.
  bool hasFirmPlace(std::size_t run) const {
    return !runs_[run].isPingAlone() || ((run == 0 || isFirmNeighbour(run - 1)) &&
                                         (run + 1 == runs_.size() || isFirmNeighbour(run + 1)));
  }
  bool isFirmNeighbour(std::size_t run) const {
    return times_[run].start.has_value() && !runs_[run].isPingAlone();
  }

  /// The runs without a ping line and the outputs without one, between two runs that have both.
  struct Gap {
    std::size_t run;
    std::size_t runEnd;
    std::vector<std::size_t> outputs;
    std::vector<std::size_t> silent;

    /// In a long row of such runs that is what their pings are like, and one that was ended is the
    /// exception; a few of them are exceptions themselves.
    bool isLong() const { return silent.size() >= 12; }
  };

  void join(Gap gap) {
    for (std::size_t i = gap.run; i < gap.runEnd; ++i) {
      if (!runs_[i].pings && !isKnownSilent(i)) {
        gap.silent.push_back(i);
      }
    }
    if (gap.silent.size() == gap.outputs.size()) {
      joinAll(gap);
    } else if (gap.isLong() || std::ranges::all_of(gap.silent, [&](std::size_t run) {
                 return journalOf(run) != nullptr;
               })) {
      deal(gap, alignSilent(gap));
    } else {
      deal(gap, undecided(gap));
    }
  }

  /// What the journal tells of a run, or null.
  const JournalLine* journalOf(std::size_t run) const {
    return runs_[run].journal == kAlone ? nullptr : &evidence_.journal[runs_[run].journal];
  }

  /// Its ping has printed nothing that begins as an output does.
  bool isKnownSilent(std::size_t run) const {
    const JournalLine* const line = journalOf(run);
    return line != nullptr && line->isGuarded() &&
           (!line->ping || line->ping->output.target.empty());
  }

  /// Whether the journal does not tell another output of the run.
  bool canHave(std::size_t run, std::size_t output) const {
    const JournalLine* const line = journalOf(run);
    return line == nullptr || !line->ping ||
           line->ping->output.replies == evidence_.outputs[output].replies;
  }

  void joinAll(const Gap& gap) {
    const bool isSure = gap.isLong() || (!hasRoom(gap.run, gap.runEnd) && isOrdered(gap.silent));
    for (std::size_t i = 0; i < gap.silent.size(); ++i) {
      RunOutputs& run = joined_.of[gap.silent[i]];
      run.outputs.push_back(gap.outputs[i]);
      run.doubt = isSure ? "" : "the ping's output could be that of a run beside it";
    }
  }

  /// Whether a history or the time tells of each two runs which was first.
  bool isOrdered(const std::vector<std::size_t>& silent) const {
    for (std::size_t i = 1; i < silent.size(); ++i) {
      const RunLines& one = runs_[silent[i - 1]];
      const RunLines& next = runs_[silent[i]];
      const bool isTold = (one.result != kAlone && next.result != kAlone) ||
                          (one.forward != kAlone && next.forward != kAlone) ||
                          (times_[silent[i - 1]].start && times_[silent[i]].start);
      if (!isTold) {
        return false;
      }
    }
    return true;
  }

  /// Each in a row of its own: all are doubtful, if there are runs and outputs.
  static std::vector<Row<2>> undecided(const Gap& gap) {
    std::vector<Row<2>> rows;
    const Members doubtful = gap.silent.empty() || gap.outputs.empty() ? 0 : kBoth;
    for (std::size_t i = 0; i < gap.outputs.size(); ++i) {
      rows.push_back({{kAlone, i}, doubtful});
    }
    for (std::size_t i = 0; i < gap.silent.size(); ++i) {
      rows.push_back({{i, kAlone}, doubtful});
    }
    return rows;
  }

  /// Gives the runs of `rows` their outputs, where these are not doubtful.
  void deal(const Gap& gap, const std::vector<Row<2>>& rows) {
    std::size_t next = 0;
    for (auto row = rows.begin(); row != rows.end();) {
      const auto end = std::find_if(row, rows.end(), [&](const Row<2>& other) {
        return isDoubtful(other) != isDoubtful(*row);
      });
      next = dealStretch(gap, {row, end}, next);
      row = end;
    }
  }

  /// All of `rows` are doubtful, or none. The silent run `next` is their first; returns the first
  /// behind them.
  std::size_t dealStretch(const Gap& gap, std::span<const Row<2>> rows, std::size_t next) {
    const bool areDoubtful = isDoubtful(rows.front());
    const std::string doubt = areDoubtful ? doubtOf(rows) : "";
    for (const Row<2>& row : rows) {
      const bool hasRun = row.places[0] != kAlone;
      const std::size_t output = row.places[1] == kAlone ? kAlone : gap.outputs[row.places[1]];
      if (hasRun) {
        takeOutput(gap.silent[next++], areDoubtful ? kAlone : output, doubt);
      }
      if (!hasRun || areDoubtful) {
        leaveOrphan(output, next < gap.silent.size() ? gap.silent[next] : gap.runEnd, doubt);
      }
    }
    return next;
  }

  void leaveOrphan(std::size_t output, std::size_t before, const std::string& doubt) {
    if (output != kAlone) {
      joined_.orphans.push_back({output, before, doubt});
    }
  }

  static bool isDoubtful(const Row<2>& row) { return row.doubtful != 0; }

  static std::string doubtOf(std::span<const Row<2>> rows) {
    const auto count = [&](std::size_t sequence) {
      return std::ranges::count_if(
          rows, [&](const Row<2>& row) { return row.places[sequence] != kAlone; });
    };
    return fmt::format("{} outputs of pings for {} runs: it is of one of these", count(1),
                       count(0));
  }

  void takeOutput(std::size_t run, std::size_t output, const std::string& doubt) {
    RunOutputs& outputs = joined_.of[run];
    if (!doubt.empty()) {
      outputs.isOpen = true;
      outputs.doubt = doubt;
    } else if (output != kAlone) {
      outputs.outputs.push_back(output);
    } else if (!evidence_.keepsOutputs) {
      // Without any trace of a ping, it is switched off.
      outputs.isOpen = !evidence_.pings.all.empty();
      outputs.doubt = outputs.isOpen ? "the outputs of the pings are not kept" : "";
    } else {
      outputs.doubt = "no output of a ping: switched off, or there was no ping";
    }
  }

  int costOfPair(const Gap& gap, const Places<2>& at) const {
    return canHave(gap.silent[at[0]], gap.outputs[at[1]]) ? 0 : kImpossible;
  }

  /// Deals outputs out to silent runs. A run that was ended before it left anything else is
  /// likeliest where the rhythm has room for it, and then at the end, where it may still go on.
  std::vector<Row<2>> alignSilent(const Gap& gap) const {
    std::vector<int> costBefore;
    std::size_t run = gap.run;
    for (std::size_t i = 0; i <= gap.silent.size(); ++i) {
      const std::size_t end = i < gap.silent.size() ? gap.silent[i] : gap.runEnd;
      costBefore.push_back(hasRoom(run, end)     ? kRunEndedInRoom
                           : end == runs_.size() ? kRunEndedLast
                                                 : kRunEndedWithoutRoom);
      run = end + 1;
    }
    constexpr Members kRun = 1;
    return align(Costs<2>{{gap.silent.size(), gap.outputs.size()},
                          [&](Members members, const Places<2>& at) {
                            return members == kBoth  ? costOfPair(gap, at)
                                   : members == kRun ? kNoOutput
                                                     : costBefore[at[0]];
                          },
                          [](const Places<2>& from, const Places<2>& end) {
                            const auto runs = static_cast<int>(end[0] - from[0]);
                            const auto more = static_cast<int>(end[1] - from[1]) - runs;
                            return more > 0 ? kRunEndedInRoom * more : kNoOutput * -more;
                          },
                          [](const Places<2>&) { return std::nullopt; }});
  }

  /// Whether the rhythm has room for one more run before any from `run` to `end`, which may be
  /// behind the last.
  bool hasRoom(std::size_t run, std::size_t end) const {
    return run <= end && rooms_[end + 1] > rooms_[run];
  }

  /// Counts the places before each run, and behind the last one, that have room for one more; as
  /// far as is known, where a time is missing or the clock was set back.
  std::vector<std::size_t> countRooms() const {
    std::vector<std::size_t> rooms = {0};
    const auto addTo = [&](std::size_t run, bool hasRoom) {
      while (rooms.size() <= run + 1) {
        rooms.push_back(rooms.back() + (hasRoom ? 1 : 0));
      }
    };
    std::optional<std::size_t> last;
    for (std::size_t i = 0; i < runs_.size(); ++i) {
      if (times_[i].start) {
        addTo(i, last && isRoomBetween(*last, i));
        last = i;
      }
    }
    addTo(runs_.size(), false);
    return rooms;
  }

  bool isRoomBetween(std::size_t one, std::size_t next) const {
    return *times_[next].start < *times_[one].start ||
           rhythm_.missedBetween(*times_[one].start, *times_[next].start) + 1 > next - one;
  }

  const Evidence& evidence_;
  const std::vector<RunLines>& runs_;
  const std::vector<RunTime>& times_;
  Rhythm rhythm_;
  std::vector<std::size_t> rooms_;
  /// The outputs whose summary the tester has read.
  std::vector<std::size_t> read_;
  OutputsOfRuns joined_;
};

}  // namespace

OutputsOfRuns joinOutputs(const Evidence& evidence, const std::vector<RunLines>& runs,
                          const std::vector<RunTime>& times) {
  return OutputJoiner(evidence, runs, times).join();
}

}  // namespace watch
