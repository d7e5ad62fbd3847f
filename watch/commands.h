// What the commands do: read, join, look, write.
#pragma once

#include "local_time.h"
#include "views/check.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace watch {

/// The statuses of the commands but `check`, which has a plugin's.
inline constexpr int kDone = 0;
inline constexpr int kUsageStatus = 2;
inline constexpr int kNothingToRead = 3;

/// What every command takes.
struct Selection {
  /// Log directories; the user's own when empty.
  std::vector<std::filesystem::path> from;
  std::optional<EpochSeconds> since;
  std::optional<EpochSeconds> until;
};

struct ExportRequest {
  /// "csv", "jsonl" or "sqlite".
  std::string format;
  std::optional<std::filesystem::path> output;
};

// Each writes figures to standard output and talk to standard error, and returns the exit status of
// the program. `now` is the time of day by which ages are told.
int list(const Selection& selection, EpochSeconds now);
int show(const Selection& selection, const std::string& run, EpochSeconds now);
int summary(const Selection& selection);
int check(const Selection& selection, const Limits& limits, EpochSeconds now);
int exportRuns(const Selection& selection, const ExportRequest& request);

}  // namespace watch
