#include "runs/times.h"

#include <algorithm>
#include <utility>

namespace watch {

namespace {

/// The first stamp of the archives that each run filled. A run's first move is named by its start.
class FillingStamps {
 public:
  FillingStamps(const Evidence& evidence, const std::vector<RunLines>& runs)
      : stamps_(runs.size()) {
    std::vector<std::size_t> owners;
    const auto note = [&](const std::vector<Filled>& filled) {
      for (const Filled& archive : filled) {
        if (owners[archive.line] != kAlone) {
          std::optional<LocalTime>& stamp = stamps_[owners[archive.line]];
          stamp = stamp ? std::min(*stamp, archive.stamp) : archive.stamp;
        }
      }
    };
    // The owner of each line of a history is the run that `lineOf` finds it in.
    const auto own = [&](std::size_t lines, auto lineOf) {
      owners.assign(lines, kAlone);
      for (std::size_t i = 0; i < runs.size(); ++i) {
        if (const std::size_t line = lineOf(runs[i]); line != kAlone) {
          owners[line] = i;
        }
      }
    };
    own(evidence.results.all.size(), [](const RunLines& run) { return run.result; });
    note(evidence.results.filled);
    own(evidence.forward.all.size(), [](const RunLines& run) { return run.forward; });
    note(evidence.forward.filled);
    own(evidence.reverse.all.size(), [](const RunLines& run) { return run.reverse; });
    note(evidence.reverse.filled);
  }

  std::optional<LocalTime> of(std::size_t run) const { return stamps_[run]; }

 private:
  std::vector<std::optional<LocalTime>> stamps_;
};

std::optional<EpochSeconds> startOf(const std::vector<Iperf3Line>& lines, std::size_t line) {
  return line == kAlone ? std::nullopt : lines[line].start;
}

}  // namespace

std::vector<RunTime> timesOfRuns(const Evidence& evidence, const std::vector<RunLines>& runs) {
  const FillingStamps stamps(evidence, runs);
  std::vector<RunTime> times;
  times.reserve(runs.size());
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const auto forward = startOf(evidence.forward.all, runs[i].forward);
    const auto reverse = startOf(evidence.reverse.all, runs[i].reverse);
    const auto epoch = forward ? forward : reverse;
    if (runs[i].pings) {
      const Moments ping = moments(evidence.pings.all[runs[i].pings->first].start);
      times.push_back({epoch ? ping.nearest(*epoch) : ping.first, TimeSource::ping,
                       !epoch && !ping.isUnique()});
    } else if (epoch) {
      times.push_back({epoch, forward ? TimeSource::forward : TimeSource::reverse, false});
    } else if (const auto stamp = stamps.of(i)) {
      const Moments filled = moments(*stamp);
      times.push_back({filled.first, TimeSource::archiveStamp, !filled.isUnique()});
    } else {
      times.emplace_back();
    }
  }
  return times;
}

}  // namespace watch
