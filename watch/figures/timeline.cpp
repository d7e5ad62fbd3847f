#include "figures/timeline.h"

#include <algorithm>

namespace watch {

namespace {

/// Two years of runs every five minutes.
constexpr std::size_t kMostMissing = 200'000;

Placed placed(const Run* run, EpochSeconds at, Mark mark) {
  const LocalTime local = localTime(at);
  return {run, at, dayNumber(local), calendar(local).hour, mark};
}

void addMissing(const Gap& gap, EpochSeconds rhythm, std::vector<Placed>& line) {
  const std::size_t count = gap.missing > kMostMissing ? 1 : gap.missing;
  for (std::size_t i = 0; i < count; ++i) {
    const EpochSeconds at = gap.begin + static_cast<EpochSeconds>(i) * rhythm;
    line.push_back(placed(nullptr, at, Mark::noTest));
  }
}

}  // namespace

std::vector<Placed> timeline(std::span<const Run> runs, const std::optional<Reference>& reference) {
  const std::vector<std::optional<EpochSeconds>> places = placesInTime(runs);
  std::vector<Placed> line;
  line.reserve(runs.size());
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const Run& run = runs[i];
    if (places[i] && !run.orphan && !run.ongoing) {
      line.push_back(placed(&run, *places[i], markOf(run, outcomeOf(run), reference)));
    }
  }
  const EpochSeconds rhythm = rhythmOf(runs).seconds;
  for (const Gap& gap : gaps(runs)) {
    addMissing(gap, rhythm, line);
  }
  std::ranges::stable_sort(line, {}, &Placed::at);
  return line;
}

}  // namespace watch
