// Figures of many values: the middle one, and how bad one in twenty is.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace watch {

/// Returns the value below which `share` of the values lie, between the two nearest ones. Nothing
/// for no values.
std::optional<double> quantile(std::vector<double> values, double share);
std::optional<double> median(std::vector<double> values);

/// How values lie: the middle one, between which two half of them are, and between which two nine
/// of ten.
struct Spread {
  std::size_t count;
  double low;
  double lowerQuarter;
  double middle;
  double upperQuarter;
  double high;
};
/// Nothing for no values.
std::optional<Spread> spread(std::vector<double> values);

}  // namespace watch
