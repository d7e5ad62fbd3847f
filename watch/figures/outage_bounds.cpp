#include "figures/outage_bounds.h"

#include "figures/outcome.h"

#include <algorithm>

namespace watch {

namespace {

std::optional<EpochSeconds> timeOfGood(auto begin, auto end) {
  const auto good =
      std::find_if(begin, end, [](const Run& run) { return run.time && hadConnection(run); });
  return good == end ? std::nullopt : good->time;
}

}  // namespace

std::optional<EpochSeconds> OutageBounds::atMost() const {
  return lastGood && nextGood ? std::optional(*nextGood - *lastGood) : std::nullopt;
}

OutageBounds boundsOf(std::span<const Run> runs, const Outage& outage) {
  const auto of = runs.subspan(outage.first, outage.last - outage.first + 1);
  const auto before = runs.first(outage.first);
  const auto behind = runs.subspan(outage.last + 1);
  EpochSeconds lastBad = outage.begin;
  for (const Run& run : of) {
    lastBad = std::max(lastBad, run.time.value_or(lastBad));
  }
  return {timeOfGood(before.rbegin(), before.rend()),
          timeOfGood(behind.begin(), behind.end()),
          outage.begin,
          lastBad,
          static_cast<std::size_t>(std::ranges::count_if(of, hadNoConnection)),
          reason(of.front())};
}

}  // namespace watch
