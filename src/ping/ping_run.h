// The ping test: running `ping` and reading its round-trip summary.
//
// Files: LOG_PATH "ping_latest.log" (written by `tee`, then read) and "ping_history_verbose.log"
// (appended; nothing ever trims it).
#pragma once

/// Pings the server, or a public resolver when `pingTestServer` is set, `numPings` times; returns
/// the shell's status. Stamps `pingStartTimeStamp` and prints the command.
int exec_ping();

/// Appends the latest ping output to the verbose history, then records the latency and writes a
/// history line for each summary in it: a line that begins "round-trip" and holds a "=". A summary
/// that is not four numbers counts with the values of the one before, 0 ms at first.
///
/// Throws std::out_of_range for a summary that ends in its first "=", and std::invalid_argument or
/// std::out_of_range for a field of four that is not a number or does not fit a double.
void read_latest_ping_log_file_unix();
