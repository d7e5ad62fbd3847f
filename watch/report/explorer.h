// What the explorer needs, which takes the place of the pictures of "day by day" where scripts run.
#pragma once

#include "report/html.h"
#include "report/station.h"

#include <string>

namespace watch {

/// Whether the build has had the library that it draws with.
bool hasExplorer();

/// All runs, for the explorer: JSON.
std::string explorerData(const Station& station);

/// The place of the explorer, with its data. Nothing without the library, or without a
/// figure.
Html explorer(const Station& station);

}  // namespace watch
