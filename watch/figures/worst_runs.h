// The runs with the worst figures.
#pragma once

#include "figures/metric.h"

#include <span>
#include <vector>

namespace watch {

/// Returns up to `count` runs that have measured `metric`, the worst first, and of the same figure
/// the earlier first.
std::vector<const Run*> worstRuns(std::span<const Run> runs, const Metric& metric,
                                  std::size_t count);

}  // namespace watch
