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
  /// Why the outputs are not certain, or why there are none, in words. Empty when they are certain.
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
