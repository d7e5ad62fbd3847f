// The iperf2 history report: the CSV lines of the history, printed, counted, archived.
//
// Files: LOG_PATH "iperf2_history.log" (read, then moved when full).
#pragma once

/// Prints the reports of the history when `debugPrintHistory` is set, and moves a history of ten
/// reports or more into the archive. A line that is no report does not count. A missing history
/// counts as empty.
void write_iperf2_history_log_files();
