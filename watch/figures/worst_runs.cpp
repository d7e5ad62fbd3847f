#include "figures/worst_runs.h"

#include <algorithm>
#include <cstddef>

namespace watch {

std::vector<const Run*> worstRuns(std::span<const Run> runs, const Metric& metric,
                                  std::size_t count) {
  std::vector<const Run*> worst;
  for (const Run& run : runs) {
    if (metric.of(run)) {
      worst.push_back(&run);
    }
  }
  const auto isWorse = [&metric](const Run* one, const Run* other) {
    const double a = *metric.of(*one);
    const double b = *metric.of(*other);
    return metric.isWorse(a, b) || (a == b && one < other);
  };
  const auto end = worst.begin() + static_cast<std::ptrdiff_t>(std::min(count, worst.size()));
  std::partial_sort(worst.begin(), end, worst.end(), isWorse);
  worst.erase(end, worst.end());
  return worst;
}

}  // namespace watch
