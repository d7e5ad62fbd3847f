// The picture of a period: usual figures and one in twenty, by day and by hour, classes, outages.
#pragma once

#include "runs/run.h"
#include "views/style.h"

#include <span>
#include <string>

namespace watch {

/// `runs` are those of the period, at least one.
std::string summaryView(std::span<const Run> runs, const Style& style);

}  // namespace watch
