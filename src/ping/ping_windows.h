// The Windows counterparts of the ping parser: they read the summary line of the Windows `ping`,
// "Minimum = 12ms, Maximum = 20ms, Average = 15ms".
//
// Files: LOG_PATH "\ping_latest.log" or "/tmp/ping_latest.log" (read).
#pragma once

/// Records the latency and writes a history line for each summary of the latest ping output: a line
/// of at least 7 characters that holds "Minimum". A summary with fewer than three "=" sets as many
/// times, in the order above; the others keep the value of the one before, 0 ms at first.
///
/// Throws std::invalid_argument or std::out_of_range for a time that is not a 32-bit number.
void read_latest_ping_log_file_win();

/// A trial twin of the same: reads "/tmp/ping_latest.log", prints less and writes no history.
void read_latest_ping_log_file_wintest();
