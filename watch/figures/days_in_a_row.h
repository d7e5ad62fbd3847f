// Days in a row that have something in common.
#pragma once

#include "figures/stretch.h"

#include <functional>
#include <optional>
#include <span>

namespace watch {

/// Days one after the other, from the first to the last; those without a run between them do not
/// count.
struct DaysInARow {
  std::int64_t first;
  std::int64_t last;
  std::size_t count;
};

/// Returns the most days in a row of which `isSuch` is true: the first of those that are as long.
/// Days for which it tells nothing end none.
std::optional<DaysInARow> longestRow(
    std::span<const Stretch> days,
    const std::function<std::optional<bool>(const Stretch&)>& isSuch);

}  // namespace watch
