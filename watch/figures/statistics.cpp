#include "figures/statistics.h"

#include <algorithm>
#include <cmath>

namespace watch {

namespace {

/// The value in the sorted `values` below which `share` of them lie.
double atShare(const std::vector<double>& values, double share) {
  const double place = share * static_cast<double>(values.size() - 1);
  const double fraction = place - std::floor(place);
  const auto lower = static_cast<std::size_t>(place);
  const double below = values[lower];
  return fraction == 0 ? below : below + fraction * (values[lower + 1] - below);
}

}  // namespace

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

std::optional<Spread> spread(std::vector<double> values) {
  if (values.empty()) {
    return std::nullopt;
  }
  std::ranges::sort(values);
  return Spread{values.size(),        atShare(values, 0.05), atShare(values, 0.25),
                atShare(values, 0.5), atShare(values, 0.75), atShare(values, 0.95)};
}

}  // namespace watch
