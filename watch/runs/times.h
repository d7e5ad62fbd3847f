// When each run was.
#pragma once

#include "evidence/evidence.h"
#include "runs/lines.h"
#include "runs/run.h"

#include <optional>
#include <vector>

namespace watch {

struct RunTime {
  std::optional<EpochSeconds> start;
  TimeSource source = TimeSource::none;
  bool foldUnresolved = false;
};

/// Returns the time of each run: that in its line of the journal, its ping's start, its forward
/// test's, its reverse test's, or the stamp of the archive that it filled.
std::vector<RunTime> timesOfRuns(const Evidence& evidence, const std::vector<RunLines>& runs);

}  // namespace watch
