// The iperf3 test: one run of the client in one direction, kept as a CSV line.
//
// Files: LOG_PATH "iperf3_latest.log" or "iperf3_latest-R.log" (written by iperf3, then read),
// "iperf3_latest_<direction>_csv.log" (replaced), "iperf3_history_<direction>_csv.log" (appended).
#pragma once

/// Runs the iperf3 client against `ipaddr` for `iperfTestTime` seconds, from the server to the
/// client when `reverse` is set, waits, and reduces its report to a rate of `outputResults` and a
/// CSV line. The line is written whatever became of the run, with zeros and empty texts for what is
/// not known.
///
/// Throws what iperf3JsonToCsvUnix() throws, and then writes no line. Writes `iperfStartTimeStamp`,
/// `iperf3_prog`, `cmd` and `filepath`.
void exec_iperf3(bool reverse);
