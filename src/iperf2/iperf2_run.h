// The iperf2 test: one run of the client, and the reading of its report.
//
// Files: LOG_PATH "iperf2_latest.log" (written by iperf2, then read), "iperf2_history.log"
// (appended), "iperf2_history_forward_csv.log" (created, stays empty).
#pragma once

/// Runs the iperf2 client against `ipaddr` for `iperfTestTime` seconds and waits. Nothing in a run
/// reads its report.
///
/// Writes `iperfStartTimeStamp`, `iperf2_prog` and `cmd`.
void exec_iperf2();

/// Appends the latest report to the history and records its rate as the write rate, stamped now. A
/// text that does not start with a whole report changes nothing in `outputResults`.
void read_latest_iperf2_log_file();
