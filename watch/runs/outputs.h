// Which outputs of ping are of which run.
#pragma once

#include "evidence/evidence.h"
#include "runs/lines.h"
#include "runs/times.h"

#include <cstddef>
#include <string>
#include <vector>

namespace watch {

/// The outputs of a run by their places in the evidence.
struct RunOutputs {
  std::vector<std::size_t> outputs;
  /// There may be an output, but which one is not known.
  bool isOpen = false;
  /// What it is then, or why there is none, in words. Empty when that is certain.
  std::string doubt;
};

/// An output of which no run can be named.
struct OrphanOutput {
  std::size_t output;
  /// It stands before this run's; the number of the runs when it is the last.
  std::size_t before;
  std::string doubt;
};

struct OutputsOfRuns {
  std::vector<RunOutputs> of;
  std::vector<OrphanOutput> orphans;
};

OutputsOfRuns joinOutputs(const Evidence& evidence, const std::vector<RunLines>& runs,
                          const std::vector<RunTime>& times);

}  // namespace watch
