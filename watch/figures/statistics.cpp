#include "figures/statistics.h"

#include <algorithm>
#include <cmath>

namespace watch {

std::optional<double> quantile(std::vector<double> values, double share) {
  if (values.empty()) {
    return std::nullopt;
  }
  const double place = share * static_cast<double>(values.size() - 1);
  const auto lower = values.begin() + static_cast<std::ptrdiff_t>(std::floor(place));
  std::nth_element(values.begin(), lower, values.end());
  const double below = *lower;
  const double fraction = place - std::floor(place);
  if (fraction == 0) {
    return below;
  }
  return below + fraction * (*std::min_element(lower + 1, values.end()) - below);
}

std::optional<double> median(std::vector<double> values) {
  return quantile(std::move(values), 0.5);
}

}  // namespace watch
