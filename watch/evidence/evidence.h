// All that a log directory tells, line by line, and in the order in which it was written. What it
// means is not decided here.
#pragma once

#include "evidence/iperf3_line.h"
#include "evidence/iperf3_report.h"
#include "evidence/journal_line.h"
#include "evidence/log_directory.h"
#include "evidence/ping_line.h"
#include "evidence/ping_output.h"
#include "evidence/result_line.h"
#include "evidence/trouble.h"

#include <optional>
#include <string>
#include <vector>

namespace watch {

/// The line that filled a history, which moved to the archive then, and what the archived file's
/// name tells.
struct Filled {
  std::size_t line;
  LocalTime stamp;
};

/// The lines of a history, of its archived files and its live one, and which of them filled it.
template <class Line>
struct Lines {
  std::vector<Line> all;
  std::vector<Filled> filled;
  /// A file of it could not be read.
  bool lacksFiles = false;
};

struct Evidence {
  /// Names below the log directory. A Source holds places in here.
  std::vector<std::string> files;
  Lines<PingLine> pings;
  Lines<Iperf3Line> forward;
  Lines<Iperf3Line> reverse;
  Lines<ResultLine> results;
  std::vector<PingOutput> outputs;
  /// Whether the log of all ping outputs is there at all.
  bool keepsOutputs = false;
  /// In the order in which they were written, each run's once.
  std::vector<JournalLine> journal;
  /// The latest reports, where they can be read.
  std::optional<Iperf3Report> forwardReport;
  std::optional<Iperf3Report> reverseReport;
  /// When the run began that took the lock last, where that has ended.
  std::optional<EpochSeconds> endedRun;
  Troubles troubles;
};

/// Reads `directory`. Archived files are ordered by the median time of their lines, not by name,
/// since a wrong clock misnames them. When the archive changes meanwhile, reads again.
Evidence readEvidence(const LogDirectory& directory);

/// The same for what was written since then and shortly before. The sources of `outputs` and
/// of `journal` have no line numbers: these files are read from their ends.
Evidence readEvidenceSince(const LogDirectory& directory, LocalTime since);

}  // namespace watch
