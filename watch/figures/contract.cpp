#include "figures/contract.h"

namespace watch {

namespace {

std::size_t measured(const Stretch& day) {
  return day.of(Mark::good) + day.of(Mark::fair) + day.of(Mark::slow) + day.of(Mark::slower) +
         day.of(Mark::slowest);
}

std::optional<bool> isWithoutGood(const Stretch& day) {
  return measured(day) == 0 ? std::nullopt : std::optional(day.of(Mark::good) == 0);
}

}  // namespace

Reached reached(std::span<const Stretch> days) {
  Reached reached;
  for (const Stretch& day : days) {
    reached.runs += measured(day);
    reached.inFull += day.of(Mark::good);
    reached.belowHalf += day.of(Mark::slower) + day.of(Mark::slowest);
    reached.days += measured(day) > 0 ? 1 : 0;
    reached.daysWithout += isWithoutGood(day).value_or(false) ? 1 : 0;
  }
  reached.longest = longestRow(days, isWithoutGood);
  return reached;
}

}  // namespace watch
