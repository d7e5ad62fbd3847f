#include "runs/times.h"

#include <algorithm>
#include <utility>

namespace watch {

namespace {

using Stamps = std::vector<std::optional<LocalTime>>;

/// The stamp of the archive that each line filled.
template <class Line>
Stamps stampsOf(const Lines<Line>& lines) {
  Stamps stamps(lines.all.size());
  for (const Filled& archive : lines.filled) {
    stamps[archive.line] = archive.stamp;
  }
  return stamps;
}

/// The first stamp of the archives that a run filled. Its first move is named by its start.
class FillingStamps {
 public:
  explicit FillingStamps(const Evidence& evidence)
      : forward_(stampsOf(evidence.forward)),
        reverse_(stampsOf(evidence.reverse)),
        results_(stampsOf(evidence.results)) {}

  std::optional<LocalTime> of(const RunLines& run) const {
    return first(first(at(forward_, run.forward), at(reverse_, run.reverse)),
                 at(results_, run.result));
  }

 private:
  static std::optional<LocalTime> at(const Stamps& stamps, std::size_t line) {
    return line == kAlone ? std::nullopt : stamps[line];
  }
  static std::optional<LocalTime> first(std::optional<LocalTime> one,
                                        std::optional<LocalTime> other) {
    return one && other ? std::min(one, other) : one ? one : other;
  }

  Stamps forward_;
  Stamps reverse_;
  Stamps results_;
};

std::optional<EpochSeconds> startOf(const std::vector<Iperf3Line>& lines, std::size_t line) {
  return line == kAlone ? std::nullopt : lines[line].start;
}

RunTime timeOf(const Evidence& evidence, const RunLines& run, const FillingStamps& stamps) {
  const auto forward = startOf(evidence.forward.all, run.forward);
  const auto epoch = forward ? forward : startOf(evidence.reverse.all, run.reverse);
  if (run.journal != kAlone && evidence.journal[run.journal].start) {
    return {evidence.journal[run.journal].start, TimeSource::journal, false};
  }
  if (run.pings) {
    const Moments ping = moments(evidence.pings.all[run.pings->first].start);
    return {epoch ? ping.nearest(*epoch) : ping.first, TimeSource::ping,
            !epoch && !ping.isUnique()};
  }
  if (epoch) {
    return {epoch, forward ? TimeSource::forward : TimeSource::reverse, false};
  }
  if (const auto stamp = stamps.of(run)) {
    const Moments filled = moments(*stamp);
    return {filled.first, TimeSource::archiveStamp, !filled.isUnique()};
  }
  return {};
}

}  // namespace

std::vector<RunTime> timesOfRuns(const Evidence& evidence, const std::vector<RunLines>& runs) {
  const FillingStamps stamps(evidence);
  std::vector<RunTime> times;
  times.reserve(runs.size());
  for (const RunLines& run : runs) {
    times.push_back(timeOf(evidence, run, stamps));
  }
  return times;
}

}  // namespace watch
