// A workstation as the page tells of it: its runs, and all that was computed of them.
#pragma once

#include "figures/contract.h"
#include "figures/counts.h"
#include "figures/outage_bounds.h"
#include "figures/stretch.h"
#include "runs/rhythm.h"
#include "runs/run.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace watch {

/// Pictures show at most so many days, up to the last one.
inline constexpr std::int64_t kMostDays = 3660;

struct Station {
  std::string name;
  /// The log directory.
  std::string folder;
  /// Of the evidence: the places in which the lines of runs are.
  std::vector<std::string> files;
  std::vector<Run> runs;
  Contract contract;

  Counts counts;
  Rhythm rhythm;
  std::size_t missing = 0;
  /// What its figures are held to; nothing where nothing was measured.
  std::optional<Reference> reference;
  std::vector<Placed> line;
  /// The whole time, and its parts.
  Stretch all;
  std::vector<Stretch> days;
  std::vector<Stretch> months;
  std::vector<Stretch> hours;
  std::vector<Stretch> hoursOfWeek;
  std::vector<OutageBounds> outages;
  /// From the first failed run of each to the next good one, together and the longest.
  EpochSeconds withoutConnection = 0;
  EpochSeconds longestOutage = 0;
  /// The element in which its sections have their titles: below its own, where it has one.
  const char* heading = "h2";

  /// The first and the last day that has a run. There has to be one.
  std::int64_t firstDay() const { return days.front().key; }
  std::int64_t lastDay() const { return days.back().key; }
  std::int64_t dayCount() const { return lastDay() - firstDay() + 1; }
  /// Those that pictures show.
  std::int64_t firstDrawnDay() const { return std::max(firstDay(), lastDay() - kMostDays + 1); }
  std::int64_t drawnDays() const { return lastDay() - firstDrawnDay() + 1; }
};

/// What is read of a workstation.
struct StationRuns {
  std::string name;
  std::string folder;
  std::vector<std::string> files;
  std::vector<Run> runs;
};

/// Computes the rest.
Station lookAt(StationRuns runs, const Contract& contract);

/// The servers of the runs, those of the most runs first.
std::vector<std::string> serversOf(const std::vector<Run>& runs);

}  // namespace watch
