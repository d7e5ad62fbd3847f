// Which lines of the histories are of one run. runs/join.h has the rules.
#pragma once

#include "evidence/evidence.h"
#include "runs/alignment.h"
#include "runs/tests.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace watch {

/// Ping lines of one start, from the first to the last, both included.
struct PingGroup {
  std::size_t first;
  std::size_t last;
};

/// The lines of a run by their places in the evidence. The result is kAlone in a run that was
/// ended.
struct RunLines {
  std::size_t result = kAlone;
  std::optional<PingGroup> pings;
  Test test;
  /// Another choice would have been as good.
  bool testDoubtful = false;
  bool pingsDoubtful = false;
};

/// Returns the runs in the order in which they wrote.
std::vector<RunLines> joinLines(const Evidence& evidence);

}  // namespace watch
