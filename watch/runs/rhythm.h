// The usual time from one run to the next.
#pragma once

#include "runs/times.h"

#include <cstdint>
#include <vector>

namespace watch {

struct Rhythm {
  /// Seconds; 0 where there is none, with fewer than three runs.
  std::int64_t seconds = 0;

  /// Returns how many runs of the rhythm are missing between one and the next.
  std::size_t missedBetween(EpochSeconds one, EpochSeconds next) const;
};

/// The median of the times from each run to the next one that has a time.
Rhythm rhythmOf(const std::vector<RunTime>& times);
Rhythm rhythmOf(const std::vector<EpochSeconds>& times);

}  // namespace watch
