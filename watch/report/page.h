// The page: what stands on it, and in which order.
#pragma once

#include "report/station.h"

#include <string>
#include <vector>

namespace watch {

/// Returns the page for these workstations, of which there is at least one. Each has a run. `now`
/// is when it is made.
std::string reportPage(std::vector<Station> stations, EpochSeconds now);

}  // namespace watch
