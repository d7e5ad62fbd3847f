// The runs of a period, each with its place in time, the runs that are missing between them, and
// the outages.
#pragma once

#include "runs/rhythm.h"
#include "runs/run.h"

#include <optional>
#include <span>
#include <vector>

namespace watch {

/// From `since`, to before `until`. Nothing stands for no bound.
struct Period {
  std::optional<EpochSeconds> since;
  std::optional<EpochSeconds> until;

  bool holds(EpochSeconds moment) const {
    return (!since || *since <= moment) && (!until || moment < *until);
  }
};

/// Returns for each run its time; for one without a time, where the rhythm would have it between
/// its neighbours, and nothing where no run has a time.
std::vector<std::optional<EpochSeconds>> placesInTime(std::span<const Run> runs);

/// Returns the runs in the period. A run without a time is where the rhythm would have it.
std::vector<Run> runsIn(std::vector<Run> runs, const Period& period);

/// Returns the time of the last run that has one and has ended.
std::optional<EpochSeconds> lastTime(std::span<const Run> runs);

/// Returns how often the runs came: the median of the times between them.
Rhythm rhythmOf(std::span<const Run> runs);

/// Runs that the rhythm would have had between two others.
struct Gap {
  /// It is before this run.
  std::size_t before;
  std::size_t missing;
  EpochSeconds begin;
};
std::vector<Gap> gaps(std::span<const Run> runs);

/// Runs one after the other in which nothing came through. One that tells neither, since it was
/// ended too early, does not end an outage.
struct Outage {
  std::size_t first;
  std::size_t last;
  /// From its first run to the next run in which something came through, or to its last run when
  /// that has not come.
  EpochSeconds begin;
  EpochSeconds end;
};
std::vector<Outage> outages(std::span<const Run> runs);

}  // namespace watch
