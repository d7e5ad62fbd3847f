// The runs on the calendar of the workstation, and those that are missing between them.
#pragma once

#include "figures/mark.h"
#include "figures/period.h"

#include <optional>
#include <span>
#include <vector>

namespace watch {

/// A run, or one that is missing, and when it was.
struct Placed {
  /// Null for one that is missing.
  const Run* run;
  EpochSeconds at;
  /// Of the wall clock: see dayNumber().
  std::int64_t day;
  unsigned hour;
  Mark mark;
};

/// Returns the runs in the order of time. Those without a time stand where the rhythm would have
/// them. Left out are those that no time can be told of, orphans and a run that goes on. Where more
/// are missing than any machine makes in its life, since a clock was wrong, one stands for all.
std::vector<Placed> timeline(std::span<const Run> runs, const std::optional<Reference>& reference);

}  // namespace watch
