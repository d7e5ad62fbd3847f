// Writes the journal: keeps of each run what the next one overwrites.
//
// Files: runs-YYYY.jsonl in the log directory (appended), by the year of the run's local time.
#pragma once

#include "evidence/evidence.h"
#include "evidence/journal_line.h"
#include "runs/run.h"

#include <vector>

namespace watch {

/// Adds the line of a run that began at `time`, in one write, behind a newline where the last line
/// was torn. Waits for another that does so. Throws std::system_error.
void appendToJournal(const LogDirectory& directory, const JournalLine& line, EpochSeconds time);

/// Keeps the latest reports when they are surely those of the last of `runs`, and that has no line
/// yet. Returns whether it has added one. Where the journal can't be written, it is left as it is.
bool keepLatestReports(const LogDirectory& directory, const Evidence& evidence,
                       const std::vector<Run>& runs);

}  // namespace watch
