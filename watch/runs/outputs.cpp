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
    std::size_t output = 0;
    for (std::size_t i = 0; i <= owners.size(); ++i) {
      if (i == owners.size()) {
        joinBetween(output, i, run, runs_.size());
      } else if (owners[i] != kAlone) {
        joinBetween(output, i, run, owners[i]);
        joined_.of[owners[i]].outputs.push_back(i);
        output = i + 1;
        run = std::max(run, owners[i]);
      }
    }
    return std::move(joined_);
  }

 private:
  /// Returns the run of each output whose ping line has its numbers.
  std::vector<std::size_t> ownersByNumbers() const {
    const std::vector<PingLine>& lines = evidence_.pings.all;
    const Alignment pairs =
        align({lines.size(), read_.size(),
               [&](std::size_t l, std::size_t o) {
                 const PingOutput& output = evidence_.outputs[read_[o]];
                 // A summary that is not four numbers is recorded as zeros, or as the one before
                 // it.
                 return !output.summaryIsWhole || hasNumbersOf(lines[l], output) ? 0 : kImpossible;
               },
               [](std::size_t) { return kLineLost; }, [](std::size_t) { return kLineLost; },
               [&](std::size_t l, std::size_t o) {
                 return !isZeros(lines[l]) && hasNumbersOf(lines[l], evidence_.outputs[read_[o]]);
               }});
    std::vector<std::size_t> owners(evidence_.outputs.size(), kAlone);
    for (std::size_t run = 0; run < runs_.size(); ++run) {
      if (runs_[run].pings) {
        for (std::size_t l = runs_[run].pings->first; l <= runs_[run].pings->last; ++l) {
          if (pairs.ofLeft[l] != kAlone) {
            owners[read_[pairs.ofLeft[l]]] = run;
          }
        }
      }
    }
    return owners;
  }

  /// Joins the outputs from `output` to before `outputEnd` with the runs from `run` to before
  /// `runEnd`: those that have no ping line.
  void joinBetween(std::size_t output, std::size_t outputEnd, std::size_t run, std::size_t runEnd) {
    std::vector<std::size_t> silent;
    for (std::size_t i = run; i < runEnd; ++i) {
      if (!runs_[i].pings) {
        silent.push_back(i);
      }
    }
    const std::size_t outputs = outputEnd - output;
    if (outputs == silent.size()) {
      const bool certain = !hasRoom(run, runEnd);
      for (std::size_t i = 0; i < outputs; ++i) {
        joined_.of[silent[i]].outputs.push_back(output + i);
        joined_.of[silent[i]].doubt =
            certain ? "" : "the ping's output could be of a run that was ended";
      }
    } else if (outputs == 0) {
      for (const std::size_t i : silent) {
        joined_.of[i].doubt = evidence_.keepsOutputs
                                  ? "no output of a ping: switched off, or there was no ping"
                                  : "the outputs of the pings are not kept";
      }
    } else {
      leaveOpen(output, outputEnd, silent, runEnd);
    }
  }

  void leaveOpen(std::size_t output, std::size_t outputEnd, const std::vector<std::size_t>& silent,
                 std::size_t before) {
    const std::string doubt =
        silent.empty() ? ""
                       : fmt::format("{} outputs of pings for {} runs: it is of one of these",
                                     outputEnd - output, silent.size());
    for (const std::size_t i : silent) {
      joined_.of[i].doubt = doubt;
    }
    for (; output < outputEnd; ++output) {
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
          rhythm_.missedBetween(*times_[*before].start, *times_[i].start) + 1 > i - *before) {
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
