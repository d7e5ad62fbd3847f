#include "figures/days_in_a_row.h"

namespace watch {

std::optional<DaysInARow> longestRow(
    std::span<const Stretch> days,
    const std::function<std::optional<bool>(const Stretch&)>& isSuch) {
  std::optional<DaysInARow> longest;
  std::optional<DaysInARow> row;
  for (const Stretch& day : days) {
    const std::optional<bool> such = isSuch(day);
    if (!such) {
      continue;
    }
    if (!*such) {
      row.reset();
      continue;
    }
    row = row ? DaysInARow{row->first, day.key, row->count + 1} : DaysInARow{day.key, day.key, 1};
    if (!longest || row->count > longest->count) {
      longest = row;
    }
  }
  return longest;
}

}  // namespace watch
