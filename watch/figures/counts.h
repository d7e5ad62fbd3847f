// How many runs of each class there are.
#pragma once

#include "runs/run.h"

#include <cstddef>
#include <span>

namespace watch {

struct Counts {
  std::size_t ok = 0;
  std::size_t partial = 0;
  std::size_t failed = 0;
  /// Of these, those of which the files leave something open.
  std::size_t unsure = 0;
  /// Outputs of pings for which no run can be named. They are in none of the others, and neither is
  /// a run that is going on.
  std::size_t orphans = 0;

  std::size_t all() const { return ok + partial + failed; }
};

Counts countRuns(std::span<const Run> runs);

}  // namespace watch
