// The iperf3 history report: the CSV lines of one direction, printed, counted, archived.
//
// Files: LOG_PATH "iperf3_history_forward_csv.log" or "iperf3_history_reverse_csv.log" (read, then
// moved when full).
#pragma once

/// Prints the lines of one direction's history when `debugPrintHistory` is set, and moves a full
/// history into the archive. Every line counts, also one that is no report and is not printed. A
/// missing history counts as empty.
void write_iperf3_history_log_files(bool reverse);
