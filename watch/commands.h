// What the commands do: read, join, look, write.
#pragma once

#include "figures/contract.h"
#include "figures/period.h"
#include "views/check.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace watch {

/// The statuses of the commands but `check`, which has a plugin's.
inline constexpr int kDone = 0;
/// The command line is wrong, or something can't be written.
inline constexpr int kRefused = 2;
inline constexpr int kNothingToRead = 3;

/// What is asked for can't be done with this command line. The words say what to do.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// What every command takes.
struct Selection {
  /// Log directories; the user's own when empty. Only `summary` and `report` read several.
  std::vector<std::filesystem::path> from;
  Period period;
};

struct ExportRequest {
  /// "csv", "jsonl" or "sqlite".
  std::string format;
  std::optional<std::filesystem::path> output;
};

struct ReportRequest {
  Contract contract;
  std::filesystem::path output = "connection-report.html";
  /// To be shown by the browser.
  bool isToOpen = false;
};

// Each writes figures to standard output and talk to standard error, and returns the exit status of
// the program. `now` is the time by which ages are told. They throw UsageError, and
// std::runtime_error where something can't be written.
int list(const Selection& selection, EpochSeconds now);
int show(const Selection& selection, const std::string& wanted, EpochSeconds now);
int summary(const Selection& selection, EpochSeconds now);
int check(const Selection& selection, const Limits& limits, EpochSeconds now);
int exportRuns(const Selection& selection, const ExportRequest& request, EpochSeconds now);
int report(const Selection& selection, const ReportRequest& request, EpochSeconds now);

}  // namespace watch
