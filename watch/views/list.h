// The view of runs, one a line.
#pragma once

#include "runs/run.h"
#include "views/style.h"

#include <span>
#include <string>

namespace watch {

/// On a terminal: the days, the runs and the hours without one, then all in two lines. Else one
/// line a run, in the same columns always, behind a heading, without one that is going on; what was
/// cut has a
/// "*".
std::string listView(std::span<const Run> runs, EpochSeconds now, const Style& style);

}  // namespace watch
