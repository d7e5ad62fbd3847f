// What is usual: the middle of what was measured, for a period or for an hour of the day.
#pragma once

#include "figures/metric.h"
#include "runs/run.h"

#include <array>
#include <optional>
#include <span>
#include <vector>

namespace watch {

/// For so long a figure is usual.
inline constexpr EpochSeconds kUsualPeriod = 28 * kDaySeconds;

struct Usual {
  /// The middle value, and the one that one in twenty is worse than. Nothing without a value, and
  /// without twenty.
  std::optional<double> middle;
  std::optional<double> oneInTwenty;
  std::size_t count = 0;
};

Usual usual(std::span<const Run> runs, const Metric& metric);

/// The middle value of each hour of the local day.
std::array<std::optional<double>, 24> byHour(std::span<const Run> runs, const Metric& metric);

/// The local days from one run to another.
struct Days {
  EpochSeconds first;
  EpochSeconds last;
  std::size_t count;
};

/// From the day of the earliest run to that of the latest one. Nothing without a time.
std::optional<Days> daysOf(std::span<const Run> runs);

/// The middle value of each of `days`, or, of each `size` days, the worst one. No run may be of
/// another day.
std::vector<std::optional<double>> byDay(std::span<const Run> runs, const Metric& metric,
                                         const Days& days, std::size_t size);

/// What was usual at the hour of `moment` in the 28 days before it; at any hour, when that hour has
/// fewer than three values. `count` tells of how many values it is.
struct UsualThen {
  std::optional<double> middle;
  std::size_t count = 0;
  bool isOfThatHour = false;
};
UsualThen usualThen(std::span<const Run> runs, const Metric& metric, EpochSeconds moment);

}  // namespace watch
