#include "runs/outputs.h"

#include "runs/alignment.h"
#include "runs/rhythm.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <optional>

namespace watch {

namespace {

constexpr int kLineLost = 20;

bool isSameNumber(double one, double other) {
  // The line has rounded it to thousandths.
  constexpr double kThousandth = 0.00051;
  return (std::isnan(one) && std::isnan(other)) || std::abs(one - other) < kThousandth;
}

bool isZeros(const PingLine& line) {
  return line.min == 0 && line.avg == 0 && line.max == 0 && line.stddev == 0;
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
      : evidence_(evidence), runs_(runs), times_(times), rhythm_(rhythmOf(times)) {
    joined_.of.resize(runs.size());
    for (std::size_t i = 0; i < evidence.outputs.size(); ++i) {
      if (evidence.outputs[i].summaryIsRead) {
        read_.push_back(i);
      }
    }
  }

  OutputsOfRuns join() {
    const std::vector<std::size_t> owners = ownersByNumbers();
    std::size_t run = 0;
    std::vector<std::size_t> unread;
    for (std::size_t i = 0; i < owners.size(); ++i) {
      if (owners[i] == kAlone) {
        unread.push_back(i);
        continue;
      }
      joined_.of[owners[i]].outputs.push_back(i);
      if (hasFirmPlace(owners[i])) {
        joinBetween(unread, run, owners[i]);
        unread.clear();
        run = std::max(run, owners[i]);
      }
    }
    joinBetween(unread, run, runs_.size());
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
    const std::vector<PingLine>& lines = evidence_.pings.all;
    const auto output = [&](std::size_t i) -> const PingOutput& {
      return evidence_.outputs[read_[i]];
    };
    constexpr Members kBoth = 3;
    return align(Costs<2>{
        {lines.size(), read_.size()},
        [&](Members members, const Places<2>& at) {
          if (members != kBoth) {
            return kLineLost;
          }
          // A summary that is not four numbers is recorded as zeros, or as the one before it.
          return !output(at[1]).summaryIsWhole || hasNumbersOf(lines[at[0]], output(at[1]))
                     ? 0
                     : kImpossible;
        },
        [](const Places<2>& from, const Places<2>& end) {
          const auto lefts = static_cast<int>(end[0] - from[0]);
          const auto rights = static_cast<int>(end[1] - from[1]);
          return kLineLost * std::abs(lefts - rights);
        },
        [&](const Places<2>& from) -> std::optional<Places<2>> {
          for (std::size_t line = from[0]; line < lines.size(); ++line) {
            const auto found = findOnly(
                from[1] + (line - from[0]), from[1], read_.size(), [&](std::size_t i) {
                  return !isZeros(lines[line]) && hasNumbersOf(lines[line], output(i));
                });
            if (found) {
              return Places<2>{line, *found};
            }
          }
          return std::nullopt;
        }});
  }

  /// Whether a run is known to be before or after each run that has left no ping line. One that has
  /// left nothing else is so by the times alone.
  bool hasFirmPlace(std::size_t run) const {
    return !runs_[run].isPingAlone() ||
           ((run == 0 || isFirmNeighbour(run - 1)) &&
            (run + 1 == runs_.size() || isFirmNeighbour(run + 1)));
  }
  bool isFirmNeighbour(std::size_t run) const {
    return times_[run].start.has_value() && !runs_[run].isPingAlone();
  }

  /// Joins outputs that the tester has not read with the runs from `run` to before `runEnd`: those
  /// that have no ping line.
  void joinBetween(const std::vector<std::size_t>& unread, std::size_t run, std::size_t runEnd) {
    std::vector<std::size_t> silent;
    for (std::size_t i = run; i < runEnd; ++i) {
      if (!runs_[i].pings) {
        silent.push_back(i);
      }
    }
    if (unread.size() == silent.size()) {
      const bool certain = !hasRoom(run, runEnd);
      for (std::size_t i = 0; i < unread.size(); ++i) {
        joined_.of[silent[i]].outputs.push_back(unread[i]);
        joined_.of[silent[i]].doubt =
            certain ? "" : "the ping's output could be of a run that was ended";
      }
    } else if (unread.empty()) {
      for (const std::size_t i : silent) {
        joined_.of[i].doubt = evidence_.keepsOutputs
                                  ? "no output of a ping: switched off, or there was no ping"
                                  : "the outputs of the pings are not kept";
      }
    } else {
      leaveOpen(unread, silent, runEnd);
    }
  }

  void leaveOpen(const std::vector<std::size_t>& unread, const std::vector<std::size_t>& silent,
                 std::size_t before) {
    const std::string doubt =
        silent.empty() ? ""
                       : fmt::format("{} outputs of pings for {} runs: it is of one of these",
                                     unread.size(), silent.size());
    for (const std::size_t i : silent) {
      joined_.of[i].doubt = doubt;
    }
    for (const std::size_t output : unread) {
      joined_.orphans.push_back({output, silent.empty() ? before : silent.front(), doubt});
    }
  }

  /// Whether the rhythm has a hole near the runs without a ping line, where a run can have been
  /// that left nothing else.
  bool hasRoom(std::size_t run, std::size_t runEnd) const {
    std::optional<std::size_t> before;
    for (std::size_t i = run; i < std::min(runEnd + 1, runs_.size()); ++i) {
      if (!times_[i].start) {
        continue;
      }
      if (before &&
          (*times_[i].start < *times_[*before].start ||
           rhythm_.missedBetween(*times_[*before].start, *times_[i].start) + 1 > i - *before)) {
        return true;
      }
      before = i;
    }
    return false;
  }

  const Evidence& evidence_;
  const std::vector<RunLines>& runs_;
  const std::vector<RunTime>& times_;
  Rhythm rhythm_;
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
