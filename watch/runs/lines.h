// Which lines of the histories are of one run. runs/join.h has the rules.
#pragma once

#include "evidence/evidence.h"
#include "runs/alignment.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace watch {

/// Ping lines of one start, from the first to the last, both included.
struct PingGroup {
  std::size_t first;
  std::size_t last;
};

/// The lines of a run by their places in the evidence, kAlone where it has none. A run without a
/// result was ended.
struct RunLines {
  std::optional<PingGroup> pings;
  std::size_t forward = kAlone;
  std::size_t reverse = kAlone;
  std::size_t result = kAlone;
  /// Its line in the journal.
  std::size_t journal = kAlone;
  // Whether another choice would have been as good.
  bool pingsDoubtful = false;
  bool testsDoubtful = false;
  bool resultDoubtful = false;
  bool journalDoubtful = false;

  bool isPingAlone() const { return forward == kAlone && reverse == kAlone && result == kAlone; }
};

/// Returns the runs in the order in which they wrote.
std::vector<RunLines> joinLines(const Evidence& evidence);

}  // namespace watch
