#include "figures/period.h"

#include "figures/outcome.h"

#include <algorithm>
#include <utility>

namespace watch {

namespace {

/// Runs are due every so many minutes, which they keep by some seconds.
EpochSeconds wholeMinutes(EpochSeconds seconds) {
  return seconds < 2 * kMinuteSeconds
             ? seconds
             : (seconds + kMinuteSeconds / 2) / kMinuteSeconds * kMinuteSeconds;
}

}  // namespace

std::optional<EpochSeconds> lastTime(std::span<const Run> runs) {
  const auto last = std::ranges::find_if(runs.rbegin(), runs.rend(),
                                         [](const Run& run) { return run.time && !run.ongoing; });
  return last == runs.rend() ? std::nullopt : last->time;
}

Rhythm rhythmOf(std::span<const Run> runs) {
  std::vector<EpochSeconds> times;
  for (const Run& run : runs) {
    if (run.time) {
      times.push_back(*run.time);
    }
  }
  return rhythmOf(times);
}

std::vector<std::optional<EpochSeconds>> placesInTime(std::span<const Run> runs) {
  const EpochSeconds rhythm = wholeMinutes(rhythmOf(runs).seconds);
  std::vector<std::optional<EpochSeconds>> places(runs.size());
  std::optional<EpochSeconds> before;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    places[i] = runs[i].time;
    if (!places[i] && before) {
      places[i] = *before + rhythm;
    }
    before = places[i] ? places[i] : before;
  }
  std::optional<EpochSeconds> after;
  for (std::size_t i = runs.size(); i-- > 0;) {
    if (!runs[i].time && after) {
      const EpochSeconds latest = *after - (places[i] ? 1 : rhythm);
      places[i] = std::min(places[i].value_or(latest), latest);
    }
    after = places[i] ? places[i] : after;
  }
  return places;
}

std::vector<Run> runsIn(std::vector<Run> runs, const Period& period) {
  if (!period.since && !period.until) {
    return runs;
  }
  const std::vector<std::optional<EpochSeconds>> places = placesInTime(runs);
  // A clock that was wrong leaves runs that are not in order.
  std::size_t kept = 0;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (places[i] && period.holds(*places[i])) {
      std::swap(runs[kept++], runs[i]);
    }
  }
  runs.resize(kept);
  return runs;
}

std::vector<Gap> gaps(std::span<const Run> runs) {
  const Rhythm rhythm = rhythmOf(runs);
  std::vector<Gap> found;
  std::optional<std::size_t> before;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (!runs[i].time) {
      continue;
    }
    const std::size_t between = before ? i - *before - 1 : 0;
    const EpochSeconds one = *runs[before.value_or(i)].time;
    const std::size_t missed = rhythm.missedBetween(one, *runs[i].time);
    if (missed > between) {
      const auto steps = static_cast<EpochSeconds>(between + 1);
      found.push_back({i, missed - between, one + steps * rhythm.seconds});
    }
    before = i;
  }
  return found;
}

std::vector<Outage> outages(std::span<const Run> runs) {
  const std::vector<std::optional<EpochSeconds>> places = placesInTime(runs);
  std::vector<Outage> found;
  bool isOpen = false;
  for (std::size_t i = 0; i < runs.size(); ++i) {
    if (!places[i]) {
      continue;
    }
    if (isOpen) {
      found.back().end = *places[i];
    }
    if (hadConnection(runs[i])) {
      isOpen = false;
    } else if (hadNoConnection(runs[i]) && isOpen) {
      found.back().last = i;
    } else if (hadNoConnection(runs[i])) {
      found.push_back({i, i, *places[i], *places[i]});
      isOpen = true;
    }
  }
  return found;
}

}  // namespace watch
