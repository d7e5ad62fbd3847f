// Figures of many values: the middle one, and how bad one in twenty is.
#pragma once

#include <optional>
#include <vector>

namespace watch {

/// Returns the value below which `share` of the values lie, between the two nearest ones. Nothing
/// for no values.
std::optional<double> quantile(std::vector<double> values, double share);
std::optional<double> median(std::vector<double> values);

}  // namespace watch
