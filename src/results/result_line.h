// The result line: date, latency, write rate and read rate, in the configured unit.
//
// Files: LOG_PATH "connection_test_results.txt" (replaced) and
// "connection_test_results_history.log" (appended, then moved when full).
#pragma once

/// Prints the result line of `outputResults`, writes it to its file and its history, and clears the
/// record. The console shows bare numbers, the files "n/a" for what was not measured.
///
/// A file that cannot be opened is skipped, silently.
void logFormattedResults();
