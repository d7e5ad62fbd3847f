// What the runs of a stretch of time came to: of a day, a month, an hour of the day.
#pragma once

#include "figures/statistics.h"
#include "figures/timeline.h"

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace watch {

struct Stretch {
  /// What tells it from the others: the number of the day, the hour.
  std::int64_t key = 0;
  /// How many runs have which mark.
  std::array<std::size_t, kMarks> marks{};
  std::optional<Spread> read;
  std::optional<Spread> write;
  std::optional<Spread> latency;

  std::size_t of(Mark mark) const { return marks.at(static_cast<std::size_t>(mark)); }
  /// All but the missing ones.
  std::size_t runs() const;
  const std::optional<Spread>& spreadOf(const Metric& metric) const;
};

using KeyOf = std::function<std::int64_t(const Placed&)>;

/// Returns a stretch for each key that a run has, in their order.
std::vector<Stretch> stretches(std::span<const Placed> line, const KeyOf& keyOf);

/// The keys of days; of months, from the year 0 on; of hours of the day; of hours of the week, from
/// Monday on.
std::int64_t dayKey(const Placed& placed);
std::int64_t monthKey(const Placed& placed);
std::int64_t hourKey(const Placed& placed);
std::int64_t hourOfWeekKey(const Placed& placed);

/// The mark of a stretch as a whole: no connection where one run had none; else that of the middle
/// figure; else why there is none.
Mark markOf(const Stretch& stretch, const std::optional<Reference>& reference);

}  // namespace watch
