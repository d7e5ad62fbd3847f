// What the histories share: their paths, the append, the line count, the move into the archive.
//
// Files: LOG_PATH "iperf<version>_history_<direction>_csv.log" (appended) and, in LOG_PATH_ARCHIVE,
// "<kind>_history_<stamp>.log" (a full history, moved there).
#pragma once

#include "run_state.h"

/// Appends the latest CSV file of one iperf direction to its history. Returns the shell's status.
/// For version 2 no such file is ever written: `cat` says so, and an empty history appears.
int read_latest_iperf_log_file(int iperfVersion, bool reverse);

/// Writes the path of the file `name` in the log directory into `path`.
void formatLogPath(char (&path)[kPathCapacity], const char* name);

/// Writes `text` to the file at `path`, opened in `mode` ("w" to replace, "a" to append). Returns
/// whether it could be opened.
bool writeText(const char* path, const char* mode, const char* text);

/// Returns the number of lines of the file at `path`, a last one without a newline included; 0 for
/// a file that cannot be read.
unsigned countLines(const char* path);

/// Moves the history at `historyPath` into the archive, under the stamp that `currentTimeStamp`
/// held before; refreshes the stamp and prints the command. A move that fails leaves the file in
/// place.
///
/// `iperfVersion` and `reverse` matter for TEST_TYPE_IPERF only. An unknown type or a version other
/// than 2 and 3 runs the command again that `cmd` holds.
void writeDatedLogFile(TEST_TYPE type, const char* historyPath, unsigned iperfVersion,
                       bool reverse);

/// The same, when the history has as many `lines` as make it full.
void moveFullHistory(unsigned lines, TEST_TYPE type, const char* historyPath,
                     unsigned iperfVersion = 0, bool reverse = false);
